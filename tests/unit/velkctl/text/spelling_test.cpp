// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/text/spelling.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/words.h"

namespace {

using testkit::Words;
using velkctl::DidYouMean;
using velkctl::OneOf;
using velkctl::SpellingSuggestions;
using velkctl::Suggestion;

const Words kNames{"get", "set", "restart", "eth0.address", "eth0.gateway"};

TEST(SpellingSuggestions, FindOneLetterWrongMissingTooManyOrSwapped) {
    for (const char* word : {"rastart", "estart", "restarrt", "restatr"}) {
        EXPECT_EQ(SpellingSuggestions(word, kNames), Words{"restart"}) << word;
    }
}

TEST(SpellingSuggestions, FindTwoErrors) {
    EXPECT_EQ(SpellingSuggestions("eth0.adess", kNames), Words{"eth0.address"});
    EXPECT_EQ(SpellingSuggestions("eht0.gatewya", kNames), Words{"eth0.gateway"});
    EXPECT_EQ(SpellingSuggestions("eth0.gtwy", kNames), Words{});
}

TEST(SpellingSuggestions, KnowTheWordsOfOtherPrograms) {
    const Words names{"address", "netmask", "method", "dhcp-dns", "psk", "wep-key-1", "off"};
    EXPECT_EQ(SpellingSuggestions("mask", names), Words{"netmask"});
    EXPECT_EQ(SpellingSuggestions("IP", names), Words{"address"});
    EXPECT_EQ(SpellingSuggestions("dhcp", names), Words{"method"});
    EXPECT_EQ(SpellingSuggestions("key", names), (Words{"psk", "wep-key-1"}));
    EXPECT_EQ(SpellingSuggestions("none", names), Words{"off"});
    EXPECT_EQ(SpellingSuggestions("mask", Words{"flask"}), Words{"flask"}) << "not one of them";
}

TEST(SpellingSuggestions, IgnoreCase) {
    EXPECT_EQ(SpellingSuggestions("RESTART", kNames), Words{"restart"});
    EXPECT_EQ(SpellingSuggestions("loked", Words{"LOCKED"}), Words{"LOCKED"});
    EXPECT_EQ(SpellingSuggestions("OLcked", Words{"LOCKED"}), Words{"LOCKED"});
}

TEST(SpellingSuggestions, AreTheNearestWords) {
    EXPECT_EQ(SpellingSuggestions("sett", kNames), Words{"set"});
    EXPECT_EQ(SpellingSuggestions("gett", kNames), Words{"get"});
}

TEST(SpellingSuggestions, AreAllEquallyNearWords) {
    EXPECT_EQ(SpellingSuggestions("bet", kNames), (Words{"get", "set"}));
    EXPECT_EQ(SpellingSuggestions("abc5", Words{"abc1", "abc2", "abc3", "abc4"}).size(), 4U);
}

TEST(SpellingSuggestions, AreEmptyIfTooManyWordsAreEquallyNear) {
    EXPECT_EQ(SpellingSuggestions("abc9", Words{"abc1", "abc2", "abc3", "abc4", "abc5"}), Words{});
}

TEST(SpellingSuggestions, IncludeWordsThatBeginWithIt) {
    EXPECT_EQ(SpellingSuggestions("eth0.gate", kNames), Words{"eth0.gateway"});
    EXPECT_EQ(SpellingSuggestions("eth0", kNames), (Words{"eth0.address", "eth0.gateway"}));
    EXPECT_EQ(SpellingSuggestions("res", kNames), Words{"restart"});
    EXPECT_EQ(SpellingSuggestions("re", kNames), Words{});
}

TEST(SpellingSuggestions, AreEmptyForAWordTooShortToCompare) {
    for (const char* word : {"", "a", "xyz", "gxx", "st"}) {
        EXPECT_EQ(SpellingSuggestions(word, Words{"get"}), Words{}) << word;
    }
    EXPECT_EQ(SpellingSuggestions("1", Words{"10", "11", "2"}), Words{});
}

TEST(SpellingSuggestions, AreEmptyForAVeryLongWord) {
    EXPECT_EQ(SpellingSuggestions(std::string(100000, 'x'), kNames), Words{});
}

TEST(Suggestion, NamesTheWordsAfterTheirNoun) {
    EXPECT_EQ(Suggestion(Words{"on", "off"}), "; did you mean on or off?");
    EXPECT_EQ(Suggestion(Words{"ntp"}, "the setting "), "; did you mean the setting ntp?");
}

TEST(DidYouMean, HasASuggestionOrTheOtherText) {
    EXPECT_EQ(DidYouMean("restat", kNames, "give a verb"), "; did you mean restart?");
    EXPECT_EQ(DidYouMean("bet", kNames, "give a verb"), "; did you mean get or set?");
    EXPECT_EQ(DidYouMean("nonsense", kNames, "give a verb"), "; give a verb");
    EXPECT_EQ(DidYouMean("x", {}, "give a verb"), "; give a verb");
}

TEST(OneOf, ListsWords) {
    EXPECT_EQ(OneOf({}), "");
    EXPECT_EQ(OneOf(Words{"on"}), "on");
    EXPECT_EQ(OneOf(Words{"on", "off"}), "on or off");
    EXPECT_EQ(OneOf(Words{"1", "2", "3"}), "1, 2 or 3");
}

}  // namespace
