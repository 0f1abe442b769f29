#include "velkctl/settings/catalogue.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lib/entry/dispatch_tables.h"
#include "velkctl/settings/value_kinds.h"

namespace {

using velkctl::Catalogue;
using velkctl::CatalogueRow;
using velkctl::FindSetting;
using velkctl::kEth0;
using velkctl::kEth1;
using velkctl::kGet;
using velkctl::kNoInterface;
using velkctl::kServerList;
using velkctl::kSet;
using velkctl::NamesSecret;
using velkctl::ParseId;
using velkctl::Setting;
using velkctl::SettingsOf;
using velkctl::UnknownInterface;
using velkctl::UnknownSetting;

constexpr std::array<CatalogueRow, 4> kRows{{
    {"place", 11, kNoInterface, kGet | kSet, &kServerList, false, ""},
    {"dns", 12, kEth0 | kEth1, kGet | kSet, &kServerList, false, ""},
    {"speed", 13, kEth0, kGet, &kServerList, false, ""},
    {"key", 14, kEth1, kSet, &kServerList, true, ""},
}};

std::vector<std::string> NamesOf(std::span<const CatalogueRow> rows) {
    std::vector<std::string> names;
    for (const Setting& setting : SettingsOf(rows)) {
        names.push_back(setting.name());
    }
    return names;
}

TEST(SettingsOf, GivesEveryRowOncePerInterface) {
    EXPECT_EQ(NamesOf(kRows), (std::vector<std::string>{"place", "eth0.dns", "eth1.dns",
                                                        "eth0.speed", "eth1.key"}));
}

TEST(FindSetting, FindsTheRowAndTheInterface) {
    const auto wired = FindSetting(kRows, "eth0.dns");
    ASSERT_TRUE(wired.has_value());
    EXPECT_EQ(wired->row, &kRows[1]);
    EXPECT_EQ(wired->interface, "eth0");
    const auto wireless = FindSetting(kRows, "eth1.key");
    ASSERT_TRUE(wireless.has_value());
    EXPECT_EQ(wireless->row, &kRows[3]);
    EXPECT_EQ(wireless->interface, "eth1");
}

TEST(FindSetting, ASettingOfTheWholeDeviceHasNoInterface) {
    const auto place = FindSetting(kRows, "place");
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->row, &kRows[0]);
    EXPECT_EQ(place->interface, "");
}

TEST(FindSetting, TakesFullNamesOnly) {
    for (const char* name :
         {"", "dns", "eth0", "eth0.", ".dns", "eth0.dn", "eth0.dnss", "eth2.dns", "ETH0.DNS",
          "eth1.speed", "eth0.place", "eth0.dns ", "eth0.eth0.dns"}) {
        EXPECT_FALSE(FindSetting(kRows, name).has_value()) << name;
    }
}

TEST(Setting, KnowsItsDirections) {
    EXPECT_TRUE(FindSetting(kRows, "eth0.dns")->can_get());
    EXPECT_TRUE(FindSetting(kRows, "eth0.dns")->can_set());
    EXPECT_TRUE(FindSetting(kRows, "eth0.speed")->can_get());
    EXPECT_FALSE(FindSetting(kRows, "eth0.speed")->can_set());
    EXPECT_FALSE(FindSetting(kRows, "eth1.key")->can_get());
    EXPECT_TRUE(FindSetting(kRows, "eth1.key")->can_set());
}

TEST(UnknownSetting, GivesTheNamesOnOtherInterfaces) {
    EXPECT_EQ(UnknownSetting(kRows, "eth2.dns"),
              "unknown setting 'eth2.dns'; give eth0.dns or eth1.dns");
    EXPECT_EQ(UnknownSetting(kRows, "dns"), "unknown setting 'dns'; give eth0.dns or eth1.dns");
    EXPECT_EQ(UnknownSetting(kRows, "eth1.speed"), "unknown setting 'eth1.speed'; give eth0.speed");
    EXPECT_EQ(UnknownSetting(kRows, "eth0.place"), "unknown setting 'eth0.place'; give place");
    EXPECT_EQ(UnknownSetting(kRows, "eth0.eth0.speed"),
              "unknown setting 'eth0.eth0.speed'; give eth0.speed");
}

TEST(UnknownSetting, GuessesWhatAMisspeltNameMeans) {
    EXPECT_EQ(UnknownSetting(kRows, "eth0.dsn"),
              "unknown setting 'eth0.dsn'; did you mean eth0.dns?");
    EXPECT_EQ(UnknownSetting(kRows, "eth1.kye"),
              "unknown setting 'eth1.kye'; did you mean eth1.key?");
    EXPECT_EQ(UnknownSetting(kRows, "sped"), "unknown setting 'sped'; did you mean eth0.speed?");
    EXPECT_EQ(UnknownSetting(kRows, "DNS"),
              "unknown setting 'DNS'; did you mean eth0.dns or eth1.dns?");
}

TEST(UnknownSetting, KnowsAnInterface) {
    EXPECT_EQ(UnknownSetting(kRows, "eth1"),
              "'eth1' is an interface, not a setting; 'velkctl show eth1' shows its settings");
}

TEST(UnknownInterface, GuessesWhatAMisspeltOneMeans) {
    EXPECT_EQ(UnknownInterface("eht1", "'eht1'"),
              "'eht1' is not an interface of the device; did you mean eth1?");
    EXPECT_EQ(UnknownInterface("ETH0", "'ETH0'"),
              "'ETH0' is not an interface of the device; did you mean eth0?");
    EXPECT_EQ(UnknownInterface("eth2", "'eth2'"),
              "'eth2' is not an interface of the device; did you mean eth0 or eth1?");
    EXPECT_EQ(UnknownInterface("wlan0", "'wlan0'"),
              "'wlan0' is not an interface of the device; give eth0 or eth1");
}

TEST(UnknownSetting, PointsToTheListOtherwise) {
    EXPECT_EQ(UnknownSetting(kRows, "colour"),
              "unknown setting 'colour'; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting(kRows, ""), "unknown setting ''; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting(kRows, "\x1b"),
              "unknown setting '\\x1b'; 'velkctl list' names them all");
}

TEST(UnknownSetting, NeitherRepeatsNorGuessesAtWhatMayBeAKey) {
    for (const char* word : {"secretpass", "eth0.dsn", "dns", "a=b"}) {
        EXPECT_EQ(
            UnknownSetting(kRows, word, /*may_be_key=*/true),
            "unknown setting, not repeated here as it may be a key; 'velkctl list' names them "
            "all");
    }
}

TEST(UnknownSetting, NeverRepeatsWhatStandsBehindAnEqualsSign) {
    EXPECT_EQ(UnknownSetting(kRows, "eth1.key=hunter2"),
              "'eth1.key' is followed by '='; give the name alone, and a value as an argument of "
              "its own");
    EXPECT_EQ(UnknownSetting(kRows, "=a=b"),
              "'' is followed by '='; give the name alone, and a value as an argument of its own");
}

TEST(NamesSecret, KnowsTheNameAndTheIdOfASecret) {
    EXPECT_TRUE(NamesSecret(kRows, "eth1.key"));
    EXPECT_TRUE(NamesSecret(kRows, "14"));
    EXPECT_TRUE(NamesSecret(kRows, "0014"));
    for (const char* word :
         {"", "key", "eth0.key", "eth1.keys", "13", "114", "14 ", "-14", "0xe"}) {
        EXPECT_FALSE(NamesSecret(kRows, word)) << word;
    }
}

TEST(ParseId, ReadsDecimalNumbers) {
    EXPECT_EQ(ParseId("0"), 0U);
    EXPECT_EQ(ParseId("108"), 108U);
    EXPECT_EQ(ParseId("4294967295"), 4294967295U);
    for (const char* word : {"", " 1", "1 ", "+1", "-1", "0x1", "1a", "4294967296"}) {
        EXPECT_EQ(ParseId(word), std::nullopt) << word;
    }
}

TEST(Catalogue, HasTheSettingsOfTheDeviceInTheirOrder) {
    EXPECT_EQ(NamesOf(Catalogue()), (std::vector<std::string>{"administrator",
                                                              "location",
                                                              "ntp",
                                                              "dhcp-ntp",
                                                              "ntp-server",
                                                              "ntp-result",
                                                              "web-update",
                                                              "eth0.mac-address",
                                                              "eth1.mac-address",
                                                              "eth0.method",
                                                              "eth1.method",
                                                              "eth0.apipa",
                                                              "eth1.apipa",
                                                              "eth0.address",
                                                              "eth1.address",
                                                              "eth0.netmask",
                                                              "eth1.netmask",
                                                              "eth0.gateway",
                                                              "eth1.gateway",
                                                              "eth0.dhcp-dns",
                                                              "eth1.dhcp-dns",
                                                              "eth0.dns",
                                                              "eth1.dns",
                                                              "eth0.dhcp-notice",
                                                              "eth0.link-speed",
                                                              "eth1.hardware-version",
                                                              "eth1.software-version",
                                                              "eth1.standard",
                                                              "eth1.service-set",
                                                              "eth1.ssid",
                                                              "eth1.channel",
                                                              "eth1.region",
                                                              "eth1.encryption",
                                                              "eth1.authentication",
                                                              "eth1.wep-key-1",
                                                              "eth1.wep-key-2",
                                                              "eth1.wep-key-3",
                                                              "eth1.wep-key-4",
                                                              "eth1.wep-default-key",
                                                              "eth1.psk",
                                                              "eth1.rate",
                                                              "eth1.access-point",
                                                              "eth1.signal",
                                                              "eth1.standards-enabled"}));
}

TEST(Catalogue, IdsAreThoseOfTheLibrary) {
    std::vector<uint32_t> ids;
    for (const CatalogueRow& row : Catalogue()) {
        ids.push_back(row.id);
    }
    EXPECT_EQ(ids,
              (std::vector<uint32_t>{2,   3,   6,   7,   9,   10,  11,  101, 102, 103, 104, 105,
                                     106, 107, 108, 109, 201, 4,   5,   301, 302, 303, 304, 305,
                                     306, 307, 308, 309, 310, 311, 312, 314, 315, 316, 317, 318}));
}

TEST(Catalogue, KeysAreSecret) {
    std::vector<std::string> secrets;
    for (const Setting& setting : SettingsOf(Catalogue())) {
        if (setting.row->secret) {
            secrets.push_back(setting.name());
        }
    }
    EXPECT_EQ(secrets, (std::vector<std::string>{"eth1.wep-key-1", "eth1.wep-key-2",
                                                 "eth1.wep-key-3", "eth1.wep-key-4", "eth1.psk"}));
}

// What a shell makes of words without quotes in quotes, or with single ones.
std::vector<std::string> WordsOf(const std::string& text) {
    if (text.starts_with("'")) {
        return {text.substr(1, text.size() - 2)};
    }
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

TEST(Catalogue, WhatCanBeSetSaysWhatItTakesWithAnExampleThatItTakes) {
    for (const CatalogueRow& row : Catalogue()) {
        if ((row.directions & kSet) == 0) {
            continue;
        }
        EXPECT_NE(row.kind->Wanted(), "") << row.name;
        if (row.secret) {
            EXPECT_EQ(row.kind->Example(), "-") << row.name;  // standard input
        } else {
            const std::vector<std::string> words = WordsOf(row.kind->Example());
            EXPECT_EQ(row.kind->Parse(words).problem, "") << row.name;
        }
    }
}

TEST(Catalogue, WithoutAValueNothingIsForced) {
    for (const CatalogueRow& row : Catalogue()) {
        if ((row.directions & kSet) != 0) {
            EXPECT_EQ(row.kind->Force({}).problem, "no value given; give " + row.kind->Wanted())
                << row.name;
        }
    }
}

TEST(Catalogue, NoProblemWithASecretRepeatsIt) {
    const std::string long_one(600, 'Q');
    for (const CatalogueRow& row : Catalogue()) {
        if (!row.secret) {
            continue;
        }
        for (const std::string& value :
             {long_one, std::string("\nQQQ\x1b"), std::string("QQQQ\n")}) {
            const std::array words{value};
            const std::string problem = row.kind->Parse(words).problem;
            EXPECT_NE(problem, "") << row.name;
            EXPECT_EQ(problem.find('Q'), std::string::npos) << row.name << ": " << problem;
        }
        const std::array words{std::string("QQQQQ"), std::string("QQQQQ")};
        EXPECT_EQ(row.kind->Parse(words).problem.find('Q'), std::string::npos) << row.name;
    }
}

TEST(Catalogue, EveryCommandOfTheLibraryIsASetting) {
    for (const auto table : {velk::kGetTable, velk::kSetTable}) {
        for (const velk::CommandEntry& entry : table) {
            EXPECT_TRUE(std::any_of(
                Catalogue().begin(), Catalogue().end(),
                [&entry](const CatalogueRow& row) { return row.id == entry.command_id; }))
                << entry.command_id;
        }
    }
}

TEST(Catalogue, NoTwoSettingsShareAName) {
    const std::vector<std::string> names = NamesOf(Catalogue());
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST(Catalogue, RowsAreWhole) {
    for (const CatalogueRow& row : Catalogue()) {
        EXPECT_FALSE(row.name.empty());
        EXPECT_EQ(row.name.find('.'), std::string_view::npos) << row.name;
        EXPECT_NE(row.interfaces, 0U) << row.name;
        EXPECT_NE(row.directions, 0U) << row.name;
        EXPECT_NE(row.kind, nullptr) << row.name;
        EXPECT_FALSE(row.help.empty()) << row.name;
    }
}

// The interfaces a command of the library takes, as catalogue flags; 0 when there is none.
unsigned InterfacesInLibrary(std::span<const velk::CommandEntry> table, uint32_t id) {
    const auto entry = std::find_if(table.begin(), table.end(),
                                    [id](const auto& row) { return row.command_id == id; });
    if (entry == table.end()) {
        return 0;
    }
    return (entry->no_interface_allowed != 0 ? kNoInterface : 0U) |
           (entry->eth0_allowed != 0 ? kEth0 : 0U) | (entry->eth1_allowed != 0 ? kEth1 : 0U);
}

TEST(Catalogue, DirectionsAndInterfacesAreThoseOfTheLibrary) {
    for (const CatalogueRow& row : Catalogue()) {
        EXPECT_EQ(InterfacesInLibrary(velk::kGetTable, row.id),
                  (row.directions & kGet) != 0 ? row.interfaces : 0U)
            << row.name;
        EXPECT_EQ(InterfacesInLibrary(velk::kSetTable, row.id),
                  (row.directions & kSet) != 0 ? row.interfaces : 0U)
            << row.name;
    }
}

}  // namespace
