// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/text/columns.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::Cut;
using velkctl::LinesOnScreen;
using velkctl::Padded;
using velkctl::Wrapped;
using velkctl::WrappedWords;

TEST(Padded, AddsBlanksAndCutsNothing) {
    EXPECT_EQ(Padded("ab", 4), "ab  ");
    EXPECT_EQ(Padded("abcd", 4), "abcd");
    EXPECT_EQ(Padded("abcde", 4), "abcde");
}

TEST(Cut, EndsATextThatDoesNotFitInDots) {
    EXPECT_EQ(Cut("abcdef", 6), "abcdef");
    EXPECT_EQ(Cut("abcdefg", 6), "abc...");
    EXPECT_EQ(Cut("abcdefg", 3), "...");
    EXPECT_EQ(Cut("abcdefg", 0), "...");
    EXPECT_EQ(Cut("", 0), "");
}

TEST(WrappedWords, FillsIndentedLines) {
    const std::vector<std::string> words{"one", "two", "three", "four"};
    EXPECT_EQ(WrappedWords(words, 80, 2), "  one two three four\n");
    EXPECT_EQ(WrappedWords(words, 9, 2), "  one two\n  three\n  four\n");
    EXPECT_EQ(WrappedWords(words, 8, 2), "  one\n  two\n  three\n  four\n");
    EXPECT_EQ(WrappedWords(words, 1, 0), "one\ntwo\nthree\nfour\n");
    EXPECT_EQ(WrappedWords({}, 80, 2), "");
}

TEST(Wrapped, BreaksLongLinesAtTheirBlanks) {
    EXPECT_EQ(Wrapped("one two three\n", 80), "one two three\n");
    EXPECT_EQ(Wrapped("one two three\n\nfour", 13), "one two three\n\nfour");
    EXPECT_EQ(Wrapped("one two three\n", 12), "one two\n    three\n");
    EXPECT_EQ(Wrapped("  one two three four\n", 12), "  one two\n      three\n      four\n");
    EXPECT_EQ(Wrapped("  name    meaning of it\n", 9),
              "  name\n      meaning\n      of\n      it\n");
    EXPECT_EQ(Wrapped("", 10), "");
}

TEST(Wrapped, BreaksASentenceThatBeginsLikeACommand) {
    EXPECT_EQ(Wrapped("velkctl asks\n", 9), "velkctl\n    asks\n");
}

TEST(Wrapped, KeepsLongWordsAndCommandsWhole) {
    EXPECT_EQ(Wrapped("    abcdefghij\n", 8), "    abcdefghij\n");
    EXPECT_EQ(Wrapped("abcdefghij k\n", 2), "abcdefghij\n    k\n");
    EXPECT_EQ(Wrapped("  velkctl get eth0.dns\n", 10), "  velkctl get eth0.dns\n");
    EXPECT_EQ(Wrapped("  example: velkctl get ntp\n", 10), "  example: velkctl get ntp\n");
}

TEST(LinesOnScreen, CountsTheLinesOfLongLinesToo) {
    EXPECT_EQ(LinesOnScreen("", 10), 0U);
    EXPECT_EQ(LinesOnScreen("a\n", 10), 1U);
    EXPECT_EQ(LinesOnScreen("a\n\nb", 10), 3U);
    EXPECT_EQ(LinesOnScreen("1234567890\n", 10), 1U);
    EXPECT_EQ(LinesOnScreen("12345678901\n", 10), 2U);
}

}  // namespace
