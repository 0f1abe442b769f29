// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Settings as one JSON document.
#include "velkctl/documents/settings_document.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velkctl::DocumentSetting;
using velkctl::ReadDocument;
using velkctl::SettingsDocument;

std::string Whole(const std::string& settings) {
    return R"({"schema": 1, "settings": )" + settings + "}";
}

// The problems with the form and with the values.
std::vector<std::string> Problems(const std::string& text) {
    const SettingsDocument document = ReadDocument(text, "net.json");
    std::vector<std::string> problems;
    for (const velkctl::Problem& problem : document.problems) {
        problems.push_back(OneLine(problem));
    }
    for (const DocumentSetting& row : document.settings) {
        if (!row.parsed.ok()) {
            problems.push_back(OneLine(ValueProblem(row, document.name)));
        }
    }
    return problems;
}

// "eth0.address 10.0.0.1" for each setting.
std::vector<std::string> Values(const std::string& settings) {
    std::vector<std::string> values;
    for (const DocumentSetting& row : ReadDocument(Whole(settings), "net.json").settings) {
        EXPECT_EQ(row.parsed.problem, "");
        values.push_back(row.setting.name() + " " + row.setting.row->kind->Print(row.parsed.data));
    }
    return values;
}

TEST(Document, HasSettingsWithTheirValues) {
    EXPECT_THAT(Values(R"({"eth0.address": "10.0.0.1", "eth0.gateway": null, "ntp": "on",
                           "eth0.dns": ["1.1.1.1", "2.2.2.2"], "eth1.dns": [], "channel": 6,
                           "web-update": "weekly sunday 08:30", "location": "",
                           "eth1.ssid": "none", "eth1.psk": null, "eth1.encryption": "2"})"),
                ElementsAre("eth0.address 10.0.0.1", "eth0.gateway none", "ntp on",
                            "eth0.dns 1.1.1.1 2.2.2.2", "eth1.dns none", "eth1.channel 6",
                            "web-update weekly sunday 08:30", "location ''", "eth1.ssid none",
                            "eth1.psk none", "eth1.encryption wep"));
}

TEST(Document, MayHaveFacts) {
    EXPECT_THAT(Problems(R"({"schema": 1, "settings": {}, "facts": {"ntp-result": "reached",
                             "eth0.address": {"any": [1]}}})"),
                IsEmpty());
    EXPECT_THAT(
        Problems(R"({"schema": 1, "settings": {}, "facts": {"speed": 1}})"),
        ElementsAre(
            "net.json: unknown setting 'speed'; at /facts/speed; did you mean eth0.link-speed?"));
}

TEST(Document, WithAnErrorInItsSyntaxHasThePlace) {
    const SettingsDocument document = ReadDocument("{\n  \"schema\": 1,\n}", "net.json");
    ASSERT_EQ(document.problems.size(), 1U);
    EXPECT_EQ(
        OneLine(document.problems[0]),
        "net.json: not JSON at line 3, column 1; fix: correct the text there; 'velkctl export' "
        "prints a document");
    EXPECT_EQ(document.problems[0].file, "net.json");
    EXPECT_EQ(document.problems[0].line, 3U);
}

TEST(Document, HasAllItsProblemsAtOnceEachWithItsPlace) {
    EXPECT_THAT(
        Problems(R"({"schema": 2, "settingz": {}, "ntp": 1, "settings": {
                     "eth0.addresz": "10.0.0.1", "eth0.address": "300.1.1.1", "ntp": 1,
                     "eth0.dns": "1.1.1.1", "eth1.dns": [1], "channel": "6", "eth1.channel": 7,
                     "eth0.mac-address": "x", "location": null, "location": "x",
                     "eth0.apipa": true, "eth1.ssid": "a\u0000b", "eth0.netmask": {}}})"),
        ElementsAre(
            "net.json: given twice; at /settings/location; give it once",
            "net.json: unknown member; at /settingz; did you mean settings?",
            "net.json: unknown member; at /ntp; give schema, settings or facts",
            "net.json: this velkctl knows only schema 1; at /schema; give a document of its own "
            "export",
            "net.json: unknown setting 'eth0.addresz'; at /settings/eth0.addresz; did you mean "
            "eth0.address?",
            "net.json: given twice, with its short name and its full name; at "
            "/settings/eth1.channel; give it once",
            "net.json: cannot be set, only read; at /settings/eth0.mac-address; leave it out or "
            "move it to facts",
            "eth0.address: '300.1.1.1' is not an IPv4 address; at /settings/eth0.address in "
            "net.json; give an IPv4 address such as 192.168.0.10",
            "ntp: its JSON type is number, not string; at /settings/ntp in net.json; give on or "
            "off",
            "eth0.dns: its JSON type is string, not array; at /settings/eth0.dns in net.json; give "
            "one to three IPv4 addresses such as 192.168.0.1, or none",
            "eth1.dns: an element of it is not a string; at /settings/eth1.dns in net.json; give "
            "one to three IPv4 addresses such as 192.168.0.1, or none",
            "eth1.channel: its JSON type is string, not number; at /settings/channel in net.json; "
            "give a number from 1 to 13",
            "location: its JSON type is null, not string; at /settings/location in net.json; give "
            "a text of at most 511 bytes",
            "eth0.apipa: its JSON type is boolean, not string; at /settings/eth0.apipa in "
            "net.json; give on or off",
            "eth1.ssid: a NUL character is not taken; at /settings/eth1.ssid in net.json; leave it "
            "out",
            "eth0.netmask: its JSON type is object, not string; at /settings/eth0.netmask in "
            "net.json; give an IPv4 mask such as 255.255.255.0"));
}

TEST(Document, IsAnObjectWithSchemaAndSettings) {
    EXPECT_THAT(Problems("[]"),
                ElementsAre("net.json: a document is an object; give {\"schema\": 1, "
                            "\"settings\": {...}}"));
    EXPECT_THAT(
        Problems("{}"),
        ElementsAre(
            "net.json: schema is missing; at /schema; give 1",
            "net.json: settings is missing; at /settings; give an object with names and values"));
    EXPECT_THAT(
        Problems(R"({"schema": 1, "settings": 3, "facts": []})"),
        ElementsAre("net.json: not an object; at /settings; give an object with names and values",
                    "net.json: not an object; at /facts; give an object with names and values"));
}

TEST(Document, MayHaveAValueThatIsNestedDeeply) {
    const std::string nested = std::string(30000, '[') + std::string(30000, ']');
    EXPECT_THAT(Problems(Whole("{\"eth0.dns\": " + nested + ", \"ntp\": \"on\"}")),
                ElementsAre("eth0.dns: an element of it is not a string; at /settings/eth0.dns in "
                            "net.json; give one to three IPv4 addresses such as 192.168.0.1, or "
                            "none"));
}

TEST(Document, NeverRepeatsASecret) {
    EXPECT_THAT(
        Problems(Whole(R"({"eth1.psk": "********", "eth1.wep-key-1": "four", "psk": 1})")),
        ElementsAre("net.json: given twice, with its short name and its full name; at "
                    "/settings/psk; give it once",
                    "eth1.psk: this is the mask that is shown in place of a key; at "
                    "/settings/eth1.psk in net.json; give a text of 1 to 64 bytes, or none",
                    "eth1.wep-key-1: 4 bytes given; at /settings/eth1.wep-key-1 in net.json; give "
                    "a text of 5 or 13 bytes, 10 or 26 hex digits, or none"));
}

TEST(Document, IsWrittenAsItIsRead) {
    velkctl::Json settings;
    settings["eth1.ssid"] = "\xC3\xA4";
    const velkctl::Json document = velkctl::MakeDocument(settings, velkctl::Json::object());
    EXPECT_EQ(velkctl::DocumentText(document),
              "{\n  \"schema\": 1,\n  \"settings\": {\n    \"eth1.ssid\": \"\\u00e4\"\n  },\n"
              "  \"facts\": {}\n}\n");
    EXPECT_THAT(Problems(velkctl::DocumentText(document)), IsEmpty());
}

}  // namespace
