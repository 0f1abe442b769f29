// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The JSON type of each setting, over many data bytes.
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"
#include <nlohmann/json.hpp>

namespace {

using testkit::DataOf;
using velkctl::Catalogue;
using velkctl::CatalogueRow;
using velkctl::Data;

// Every value of the first byte, and texts of the device's files.
std::vector<Data> Samples() {
    std::vector<Data> samples;
    for (int code = 0; code < 256; ++code) {
        samples.push_back(DataOf(std::string(1, static_cast<char>(code))));
    }
    for (const char* text :
         {"none", "off", "on", "wep", "3", "192.168.0.1", "192.168.0.1 192.168.0.2", "time.example",
          "020000000010", "a text", "\2\1\0\3\4", "\x7f\x7f\x7f\x7f\x7f\x7f\x7f\x7f"}) {
        samples.push_back(DataOf(text));
    }
    return samples;
}

TEST(EverySetting, HasOneJsonTypeBesidesNull) {
    const std::map<std::string_view, std::string> others{
        {"dns", "array"},
        {"signal", "array"},
        {"standard", "number"},
        {"channel", "number"},
        {"region", "number"},
        {"authentication", "number"},
        {"wep-default-key", "number"},
        {"standards-enabled", "number"},
    };
    for (const CatalogueRow& row : Catalogue()) {
        std::set<std::string> found;
        for (const Data& data : Samples()) {
            found.insert(row.kind->ToJson(data).type_name());
        }
        found.erase("null");
        const auto other = others.find(row.name);
        const std::string expected = other == others.end() ? "string" : other->second;
        EXPECT_EQ(found, std::set<std::string>{expected}) << row.name;
    }
}

// The data bytes that set accepts, as get --json shows them.
TEST(EverySetting, TakesTheJsonValueThatItShows) {
    int taken = 0;
    for (const CatalogueRow& row : Catalogue()) {
        for (const Data& data : Samples()) {
            const std::string word = row.kind->Print(data);
            const velkctl::Parsed accepted = row.kind->Parse({&word, 1});
            if (!accepted.ok()) {
                continue;
            }
            const nlohmann::ordered_json value = row.kind->ToJson(accepted.data);
            const velkctl::Parsed parsed = row.kind->FromJson(value);
            EXPECT_EQ(parsed.problem, "") << row.name << " " << value;
            EXPECT_EQ(row.kind->ToJson(parsed.data), value) << row.name;
            ++taken;
        }
    }
    EXPECT_GT(taken, 100);
}

TEST(EverySetting, RefusesAJsonValueOfAnotherType) {
    for (const CatalogueRow& row : Catalogue()) {
        for (const char* text : {"true", "1.5", "{}", "[{}]", "[1]", "18446744073709551615"}) {
            const nlohmann::ordered_json value = nlohmann::ordered_json::parse(text);
            EXPECT_NE(row.kind->FromJson(value).problem, "") << row.name << " " << text;
        }
    }
}

// Words of a command line have other meanings here.
TEST(AText, IsTakenAsItIsFromJson) {
    const auto print = [](std::string_view name, const nlohmann::ordered_json& value) {
        const velkctl::Setting setting = *velkctl::FindSetting(name);
        const velkctl::Parsed parsed = setting.row->kind->FromJson(value);
        return parsed.ok() ? std::string(parsed.data.data()) : parsed.problem;
    };
    EXPECT_EQ(print("ssid", "none"), "none");
    EXPECT_EQ(print("ssid", "''"), "''");
    EXPECT_EQ(print("ssid", "\\xc3\\xa4"), "\xC3\xA4");
    EXPECT_EQ(print("psk", "none"), "none");
    EXPECT_EQ(print("psk", nullptr), "");
    EXPECT_EQ(print("psk", ""), "0 bytes given; give a text of 1 to 64 bytes, or none");
}

TEST(AChannel, IsAWholeNumber) {
    const velkctl::Setting channel = *velkctl::FindSetting("eth1.channel");
    EXPECT_EQ(channel.row->kind->FromJson(6.5).problem,
              "6.5 is not a whole number; give a number from 1 to 13");
}

TEST(AServerList, TakesNoneAsOtherSettingsDo) {
    const velkctl::Setting dns = *velkctl::FindSetting("eth0.dns");
    EXPECT_TRUE(dns.row->kind->FromJson("none").ok());
    EXPECT_FALSE(dns.row->kind->FromJson("1.1.1.1").ok());
}

}  // namespace
