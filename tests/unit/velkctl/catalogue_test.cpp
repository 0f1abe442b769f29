#include "velkctl/catalogue.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/dispatch_tables.h"

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
using velkctl::Setting;
using velkctl::SettingsOf;
using velkctl::UnknownSetting;

constexpr std::array<CatalogueRow, 4> kRows{{
    {"place", 11, kNoInterface, kGet | kSet, &kServerList, ""},
    {"dns", 12, kEth0 | kEth1, kGet | kSet, &kServerList, ""},
    {"speed", 13, kEth0, kGet, &kServerList, ""},
    {"key", 14, kEth1, kSet, &kServerList, ""},
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

TEST(UnknownSetting, PointsToTheListOtherwise) {
    EXPECT_EQ(UnknownSetting(kRows, "eth0.dsn"),
              "unknown setting 'eth0.dsn'; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting(kRows, ""), "unknown setting ''; 'velkctl list' names them all");
    EXPECT_EQ(UnknownSetting(kRows, "\x1b"),
              "unknown setting '\\x1b'; 'velkctl list' names them all");
}

TEST(Catalogue, HasItsRows) {
    EXPECT_GE(Catalogue().size(), 1U);
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
