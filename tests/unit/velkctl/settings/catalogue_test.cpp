// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/catalogue.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lib/entry/dispatch_tables.h"
#include "velkctl/settings/value_kind.h"

namespace {

using velkctl::Catalogue;
using velkctl::CatalogueRow;
using velkctl::FindSetting;
using velkctl::kEth0;
using velkctl::kEth1;
using velkctl::kGet;
using velkctl::kNoInterface;
using velkctl::kSet;
using velkctl::NamesSecret;
using velkctl::Setting;
using velkctl::Settings;
using velkctl::UnknownInterface;
using velkctl::UnknownSetting;

std::vector<std::string> FullNames() {
    std::vector<std::string> names;
    for (const Setting& setting : Settings()) {
        names.push_back(setting.name());
    }
    return names;
}

TEST(Settings, HaveEveryRowOncePerInterface) {
    for (const CatalogueRow& row : Catalogue()) {
        std::vector<std::string> interfaces;
        for (const Setting& setting : Settings()) {
            if (setting.row == &row) {
                interfaces.emplace_back(setting.interface);
            }
        }
        std::vector<std::string> expected;
        for (const auto& [flag, interface] :
             {std::pair(kNoInterface, ""), std::pair(kEth0, "eth0"), std::pair(kEth1, "eth1")}) {
            if ((row.interfaces & flag) != 0) {
                expected.emplace_back(interface);
            }
        }
        EXPECT_EQ(interfaces, expected) << row.name;
    }
}

TEST(FindSetting, FindsTheRowAndTheInterface) {
    const auto wired = FindSetting("eth0.dns");
    ASSERT_TRUE(wired.has_value());
    EXPECT_EQ(wired->row->id, VELK_CMD_DNS);
    EXPECT_EQ(wired->interface, "eth0");
    const auto wireless = FindSetting("eth1.psk");
    ASSERT_TRUE(wireless.has_value());
    EXPECT_EQ(wireless->row->id, VELK_CMD_PSK);
    EXPECT_EQ(wireless->interface, "eth1");
}

TEST(FindSetting, ASettingOfTheWholeDeviceHasNoInterface) {
    const auto location = FindSetting("location");
    ASSERT_TRUE(location.has_value());
    EXPECT_EQ(location->row->id, VELK_CMD_LOCATION);
    EXPECT_EQ(location->interface, "");
}

TEST(FindSetting, TakesFullNamesOnly) {
    for (const char* name :
         {"", "dns", "eth0", "eth0.", ".dns", "eth0.dn", "eth0.dnss", "eth2.dns", "ETH0.DNS",
          "eth1.link-speed", "eth0.location", "eth0.dns ", "eth0.eth0.dns"}) {
        EXPECT_FALSE(FindSetting(name).has_value()) << name;
    }
}

TEST(Setting, KnowsItsDirections) {
    EXPECT_TRUE(FindSetting("eth0.dns")->can_get());
    EXPECT_TRUE(FindSetting("eth0.dns")->can_set());
    EXPECT_TRUE(FindSetting("eth0.mac-address")->can_get());
    EXPECT_FALSE(FindSetting("eth0.mac-address")->can_set());
    EXPECT_FALSE(FindSetting("eth0.dhcp-notice")->can_get());
    EXPECT_TRUE(FindSetting("eth0.dhcp-notice")->can_set());
}

TEST(UnknownSetting, GivesTheNamesOnOtherInterfaces) {
    EXPECT_EQ(UnknownSetting("eth2.dns"), "unknown setting 'eth2.dns'; give eth0.dns or eth1.dns");
    EXPECT_EQ(UnknownSetting("dns"),
              "'dns' is a setting of both interfaces; give eth0.dns or eth1.dns");
    EXPECT_EQ(UnknownSetting("eth1.link-speed"),
              "unknown setting 'eth1.link-speed'; give eth0.link-speed");
    EXPECT_EQ(UnknownSetting("eth0.location"), "unknown setting 'eth0.location'; give location");
    EXPECT_EQ(UnknownSetting("eth0.eth0.link-speed"),
              "unknown setting 'eth0.eth0.link-speed'; give eth0.link-speed");
}

TEST(UnknownSetting, SuggestsACorrectionOfAMisspeltName) {
    EXPECT_EQ(UnknownSetting("eth0.dsn"), "unknown setting 'eth0.dsn'; did you mean eth0.dns?");
    EXPECT_EQ(UnknownSetting("eth1.pks"), "unknown setting 'eth1.pks'; did you mean eth1.psk?");
    EXPECT_EQ(UnknownSetting("link-sped"),
              "unknown setting 'link-sped'; did you mean eth0.link-speed?");
    EXPECT_EQ(UnknownSetting("DNS"), "unknown setting 'DNS'; did you mean eth0.dns or eth1.dns?");
}

TEST(UnknownSetting, SuggestsTheNameForAWordOfOtherPrograms) {
    EXPECT_EQ(UnknownSetting("eth0.mask"),
              "unknown setting 'eth0.mask'; did you mean eth0.netmask?");
    EXPECT_EQ(UnknownSetting("eth0.gw"), "unknown setting 'eth0.gw'; did you mean eth0.gateway?");
    EXPECT_EQ(UnknownSetting("eth1.ip"), "unknown setting 'eth1.ip'; did you mean eth1.address?");
    EXPECT_EQ(UnknownSetting("eth0.speed"),
              "unknown setting 'eth0.speed'; did you mean eth0.link-speed?");
    EXPECT_EQ(UnknownSetting("eth0.dhcp"),
              "unknown setting 'eth0.dhcp'; did you mean eth0.method?");
    EXPECT_EQ(UnknownSetting("eth0.password"),
              "unknown setting 'eth0.password'; did you mean eth1.psk?");
    EXPECT_EQ(UnknownSetting("nameserver"),
              "unknown setting 'nameserver'; did you mean eth0.dns or eth1.dns?");
}

TEST(UnknownSetting, KnowsAnInterface) {
    EXPECT_EQ(UnknownSetting("eth1"),
              "'eth1' is an interface, not a setting; 'velkctl show eth1' shows its settings");
    EXPECT_EQ(UnknownSetting("eth2"),
              "'eth2' is not an interface of the device; did you mean eth0 or eth1?");
}

TEST(UnknownInterface, SuggestsACorrectionOfAMisspeltName) {
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
    EXPECT_EQ(UnknownSetting("colour"), "unknown setting 'colour'; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting(""), "unknown setting ''; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting("\x1b"), "unknown setting '\\x1b'; 'velkctl list' names them all");
}

TEST(UnknownSetting, NeitherRepeatsNorCorrectsAWordThatMayBeAKey) {
    for (const char* word : {"secretpass", "eth0.dsn", "dns", "a=b"}) {
        EXPECT_EQ(
            UnknownSetting(word, /*may_be_key=*/true),
            "unknown setting, not repeated here as it may be a key; 'velkctl list' names them "
            "all");
    }
}

TEST(UnknownSetting, NeverRepeatsTheTextAfterAnEqualsSign) {
    EXPECT_EQ(UnknownSetting("eth1.psk=hunter2"),
              "'eth1.psk' is followed by '='; give the name alone");
    EXPECT_EQ(UnknownSetting("=a=b"), "'' is followed by '='; give the name alone");
}

TEST(NamesSecret, KnowsTheNameAndTheIdOfASecret) {
    EXPECT_TRUE(NamesSecret("eth1.psk"));
    EXPECT_TRUE(NamesSecret("psk"));
    EXPECT_TRUE(NamesSecret("314"));
    EXPECT_TRUE(NamesSecret("00314"));
    for (const char* word : {"", "eth0.psk", "eth1.psks", "301", "1314", "314 ", "-314", "0x13a"}) {
        EXPECT_FALSE(NamesSecret(word)) << word;
    }
}

TEST(Catalogue, HasTheSettingsOfTheDeviceInTheirOrder) {
    EXPECT_EQ(FullNames(), (std::vector<std::string>{"administrator",
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

TEST(EffectTime, IsThatOfTheProgramThatUsesTheSetting) {
    std::map<std::string, std::vector<std::string>> times;
    for (const Setting& setting : Settings()) {
        if (setting.can_set()) {
            times[EffectTime(setting)].push_back(setting.name());
        }
    }
    EXPECT_EQ(
        times,
        (std::map<std::string, std::vector<std::string>>{
            {"at once", {"administrator", "location", "eth0.link-speed"}},
            {"when the DNS forwarder reads its file again", {"eth0.dns", "eth1.dns"}},
            {"at the next run of cron", {"ntp", "web-update"}},
            {"at the next run of cron, once ntp is on", {"ntp-server"}},
            {"at the next restart of eth0 or eth1, off at the next lease", {"dhcp-ntp"}},
            {"at the next restart of eth0", {"eth0.method"}},
            {"at the next restart of eth0, with method static",
             {"eth0.address", "eth0.netmask", "eth0.gateway"}},
            {"at the next restart of eth0, off at the next lease", {"eth0.dhcp-dns"}},
            {"at the next lease or restart of eth0", {"eth0.apipa", "eth0.dhcp-notice"}},
            {"at the next lease or restart of eth1, without the cable in eth0", {"eth1.apipa"}},
            {"at the next restart of eth1, without the cable in eth0, off at the next lease",
             {"eth1.dhcp-dns"}},
            {"at the next restart of eth1, with method static, without the cable in eth0",
             {"eth1.address", "eth1.netmask", "eth1.gateway"}},
            {"at the next restart of eth1, without the cable in eth0",
             {"eth1.method", "eth1.service-set", "eth1.ssid", "eth1.channel", "eth1.encryption",
              "eth1.authentication", "eth1.wep-key-1", "eth1.wep-key-2", "eth1.wep-key-3",
              "eth1.wep-key-4", "eth1.wep-default-key", "eth1.psk", "eth1.standards-enabled"}}}));
}

TEST(Catalogue, KeysAreSecret) {
    std::vector<std::string> secrets;
    for (const Setting& setting : Settings()) {
        if (setting.row->secret) {
            secrets.push_back(setting.name());
        }
    }
    EXPECT_EQ(secrets, (std::vector<std::string>{"eth1.wep-key-1", "eth1.wep-key-2",
                                                 "eth1.wep-key-3", "eth1.wep-key-4", "eth1.psk"}));
}

// Returns the words that a shell makes of a text without quotes, or in single ones.
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

TEST(Catalogue, EverySettingToSetDescribesItsValuesWithAValidExample) {
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
    const std::vector<std::string> names = FullNames();
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

// The interfaces a command of the library takes, as catalogue flags; 0 if none.
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
