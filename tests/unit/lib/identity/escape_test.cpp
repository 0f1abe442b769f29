// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <string>

#include <gtest/gtest.h>

#include "velk/identity.h"

namespace {

TEST(ReplaceAll, ReplacesEveryOccurrence) {
    EXPECT_EQ(ReplaceAll("a b a", "a", "x"), "x b x");
    EXPECT_EQ(ReplaceAll("one two one", "one", "three"), "three two three");
    EXPECT_EQ(ReplaceAll("aaa", "a", "b"), "bbb");
}

TEST(ReplaceAll, ATextWithoutItStays) {
    EXPECT_EQ(ReplaceAll("abc", "x", "y"), "abc");
    EXPECT_EQ(ReplaceAll("", "x", "y"), "");
    EXPECT_EQ(ReplaceAll("ab", "abc", "y"), "ab");
    EXPECT_EQ(ReplaceAll("ABC", "abc", "y"), "ABC");
}

TEST(ReplaceAll, TheReplacementIsNotSearchedAgain) {
    EXPECT_EQ(ReplaceAll("a", "a", "aa"), "aa");
    EXPECT_EQ(ReplaceAll("aXa", "a", "bab"), "babXbab");
    EXPECT_EQ(ReplaceAll("a", "a", "a"), "a");
    EXPECT_EQ(ReplaceAll("ab", "a", "ba"), "bab");
    EXPECT_EQ(ReplaceAll("aab", "ab", "b"), "ab") << "the end of one and what follows are not one";
}

TEST(ReplaceAll, OccurrencesThatOverlapAreTakenFromTheLeft) {
    EXPECT_EQ(ReplaceAll("aaaaa", "aa", "b"), "bba");
    EXPECT_EQ(ReplaceAll("ababa", "aba", "x"), "xba");
}

TEST(ReplaceAll, AnEmptyReplacementRemoves) {
    EXPECT_EQ(ReplaceAll("a-b-c", "-", ""), "abc");
    EXPECT_EQ(ReplaceAll("---", "-", ""), "");
    EXPECT_EQ(ReplaceAll("aabb", "ab", ""), "ab") << "what comes together is not searched again";
}

TEST(ReplaceAll, TheEmptyTextIsFoundNowhere) {
    EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(ReplaceAll("", "", "x"), "");
    EXPECT_EQ(ReplaceAll("abc", "", ""), "abc");
}

TEST(ReplaceAll, NulsAreCharactersLikeOthers) {
    const std::string text("a\0b\0", 4);
    EXPECT_EQ(ReplaceAll(text, std::string(1, '\0'), "0"), "a0b0");
    EXPECT_EQ(ReplaceAll("aob", "o", std::string(1, '\0')), std::string("a\0b", 3));
}

TEST(ReplaceAll, ItsArgumentsStay) {
    const std::string text = "a/b";
    const std::string from = "/";
    const std::string to = "//";
    EXPECT_EQ(ReplaceAll(text, from, to), "a//b");
    EXPECT_EQ(text, "a/b");
    EXPECT_EQ(ReplaceAll(text, text, text), "a/b");
}

TEST(GetEscapeString, EachSpecialCharacterHasItsEscape) {
    EXPECT_EQ(GetEscapeString("\\"), R"(\\)");
    EXPECT_EQ(GetEscapeString("&"), R"(\&)");
    EXPECT_EQ(GetEscapeString("\""), R"(\")");
    EXPECT_EQ(GetEscapeString("'"), R"('\'')");
    EXPECT_EQ(GetEscapeString("/"), R"(\/)");
}

TEST(GetEscapeString, OtherCharactersStay) {
    std::string others;
    for (int code = 0; code < 256; ++code) {
        if (std::string("\\&\"'/").find(static_cast<char>(code)) == std::string::npos) {
            others.push_back(static_cast<char>(code));
        }
    }
    EXPECT_EQ(others.size(), 251U);
    EXPECT_EQ(GetEscapeString(others), others);
    EXPECT_EQ(GetEscapeString(""), "");
}

TEST(GetEscapeString, BackslashesOfTheOtherEscapesAreNotDoubled) {
    EXPECT_EQ(GetEscapeString("O'Neil & Co/IT"), R"(O'\''Neil \& Co\/IT)");
    EXPECT_EQ(GetEscapeString(R"(\&"'/)"), R"(\\\&\"'\''\/)");
    EXPECT_EQ(GetEscapeString(R"(/'"&\)"), R"(\/'\''\"\&\\)");
}

TEST(GetEscapeString, TextThatLooksEscapedIsEscapedAgain) {
    EXPECT_EQ(GetEscapeString(R"(\\)"), R"(\\\\)");
    EXPECT_EQ(GetEscapeString(R"(\/)"), R"(\\\/)");
    EXPECT_EQ(GetEscapeString(R"('\'')"), R"('\''\\'\'''\'')");
    EXPECT_EQ(GetEscapeString(R"(\n)"), R"(\\n)");
}

TEST(GetEscapeString, ATextOfQuotesGrowsToFourTimesItsLength) {
    std::string expected;
    for (int i = 0; i < 511; ++i) {
        expected += R"('\'')";
    }
    EXPECT_EQ(GetEscapeString(std::string(511, '\'')), expected);
    EXPECT_EQ(expected.size(), 2044U);
}

}  // namespace
