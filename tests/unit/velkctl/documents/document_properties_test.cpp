// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Rules that hold for a document of any text.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.h"
#include "velkctl/documents/settings_document.h"

namespace {

using testkit::Dice;
using velkctl::DocumentSetting;
using velkctl::Json;
using velkctl::ReadDocument;
using velkctl::SettingsDocument;

constexpr int kRounds = 4000;

const std::vector<std::string> kPieces{"{",
                                       "}",
                                       "[",
                                       "]",
                                       ",",
                                       ":",
                                       "\"",
                                       "\\",
                                       "null",
                                       "true",
                                       "1",
                                       "-1",
                                       "1e999",
                                       "1.5",
                                       "\n",
                                       "\xFF",
                                       "\xC3\xA4",
                                       "\\u0000",
                                       "\\ud800",
                                       "\\xff",
                                       "\"schema\": 1",
                                       "\"ntp\"",
                                       "\"eth0.dns\": [\"1.1.1.1\"]",
                                       "\"channel\": 6",
                                       "\"eth1.ssid\"",
                                       "\"settings\": {",
                                       "\"facts\": {}",
                                       "\"eth0.address\": \"10.0.0.9\",",
                                       "\"web-update\": \"daily 8:05\"",
                                       "",
                                       "\"eth1.psk\": \"a key of a person\""};

const std::string kWhole =
    R"({"schema": 1, "settings": {"administrator": "x", "ntp": "on", "eth0.method": "static",
 "eth0.address": "192.168.0.10", "eth0.gateway": null, "eth0.dns": ["192.168.0.1", "1.1.1.1"],
 "eth1.channel": 6, "eth1.ssid": "a \"b\" \\xff", "web-update": "weekly sunday 08:30",
 "eth1.psk": null}, "facts": {"ntp-result": "reached", "eth1.signal": [1, 2]}})";

// Replaces a few short parts of the text.
std::string Changed(std::string text, Dice& dice) {
    for (size_t count = 1 + dice.Below(4); count > 0; --count) {
        const size_t at = dice.Below(text.size() + 1);
        const size_t length = std::min(dice.Below(6), text.size() - at);
        text.replace(at, length, kPieces[dice.Below(kPieces.size())]);
    }
    return text;
}

size_t LinesIn(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

// A problem names its document, and a line or a value of it.
void CheckProblems(const SettingsDocument& document, const std::string& text) {
    for (const velkctl::Problem& problem : document.problems) {
        EXPECT_EQ(problem.file, "net.json") << text;
        EXPECT_LE(problem.line, LinesIn(text)) << text;
        EXPECT_EQ(problem.message.find('\n'), std::string::npos) << text;
        EXPECT_EQ(OneLine(problem).find("a key of a person"), std::string::npos) << text;
    }
}

// A document with the accepted values has the same values.
void CheckValues(const SettingsDocument& document, const std::string& text) {
    Json values = Json::object();
    for (const DocumentSetting& row : document.settings) {
        if (row.parsed.ok()) {
            values[row.setting.name()] = row.setting.row->kind->ToJson(row.parsed.data);
        }
    }
    const Json made = velkctl::MakeDocument(values, Json::object());
    const SettingsDocument again = ReadDocument(velkctl::DocumentText(made), "net.json");
    EXPECT_TRUE(again.problems.empty()) << text;
    Json read = Json::object();
    for (const DocumentSetting& row : again.settings) {
        EXPECT_EQ(row.parsed.problem, "") << text;
        read[row.setting.name()] = row.setting.row->kind->ToJson(row.parsed.data);
    }
    EXPECT_EQ(read, values) << text;
}

TEST(DocumentProperties, HoldForChangedDocuments) {
    Dice dice(1);
    int valid = 0;
    for (int round = 0; round < kRounds && !testing::Test::HasFailure(); ++round) {
        const std::string text = Changed(kWhole, dice);
        const SettingsDocument document = ReadDocument(text, "net.json");
        CheckProblems(document, text);
        CheckValues(document, text);
        valid += document.problems.empty() ? 1 : 0;
    }
    EXPECT_GT(valid, 20) << "some texts are still documents";
    EXPECT_LT(valid, kRounds / 2);
}

TEST(DocumentProperties, HoldForAnyPieces) {
    Dice dice(2);
    for (int round = 0; round < kRounds && !testing::Test::HasFailure(); ++round) {
        const std::string text = Changed(Changed("", dice), dice);
        CheckProblems(ReadDocument(text, "net.json"), text);
    }
}

}  // namespace
