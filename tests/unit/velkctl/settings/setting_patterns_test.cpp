// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Words that select several settings.
#include "velkctl/settings/setting_patterns.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/words.h"

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testkit::Words;
using velkctl::IsPattern;

Words Matching(const std::string& pattern) {
    Words names;
    for (const velkctl::Setting& setting : velkctl::SettingsMatching(pattern)) {
        names.push_back(setting.name());
    }
    return names;
}

TEST(SettingPattern, IsAnInterfaceOrAPatternOfTheShell) {
    for (const char* word : {"eth0", "eth1", "*", "eth?.dns", "[en]*", "eth0.*"}) {
        EXPECT_TRUE(IsPattern(word)) << word;
    }
    for (const char* word : {"", "eth", "eth2", "eth0.dns", "ntp"}) {
        EXPECT_FALSE(IsPattern(word)) << word;
    }
}

TEST(SettingPattern, SelectsAllSettingsOfAnInterface) {
    const Words wired = Matching("eth0");
    EXPECT_THAT(wired, Each(StartsWith("eth0.")));
    EXPECT_THAT(wired, Contains("eth0.link-speed"));
    EXPECT_EQ(wired, Matching("eth0.*"));
}

TEST(SettingPattern, SelectsInTheOrderOfTheCatalogue) {
    EXPECT_THAT(Matching("eth*.dns"), ElementsAre("eth0.dns", "eth1.dns"));
    EXPECT_THAT(Matching("*tp*"), Contains("ntp-server"));
    EXPECT_THAT(Matching("[m-n]tp"), ElementsAre("ntp"));
    EXPECT_EQ(Matching("*").size(), velkctl::Settings().size());
}

TEST(SettingPattern, MatchesWholeNamesAndTakesABackslashAsItIs) {
    EXPECT_THAT(Matching("tp*"), IsEmpty());
    EXPECT_THAT(Matching("dns"), IsEmpty());
    EXPECT_THAT(Matching("eth0\\.dns"), IsEmpty());
    EXPECT_THAT(Matching("*.d?s"), Not(Contains("eth0.dhcp-dns")));
}

}  // namespace
