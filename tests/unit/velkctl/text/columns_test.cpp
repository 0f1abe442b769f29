// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/text/columns.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::Cut;
using velkctl::InLinesOf;
using velkctl::LinesOnScreen;
using velkctl::Padded;

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

TEST(InLinesOf, FillsIndentedLines) {
    const std::vector<std::string> words{"one", "two", "three", "four"};
    EXPECT_EQ(InLinesOf(words, 80, 2), "  one two three four\n");
    EXPECT_EQ(InLinesOf(words, 9, 2), "  one two\n  three\n  four\n");
    EXPECT_EQ(InLinesOf(words, 8, 2), "  one\n  two\n  three\n  four\n");
    EXPECT_EQ(InLinesOf(words, 1, 0), "one\ntwo\nthree\nfour\n");
    EXPECT_EQ(InLinesOf({}, 80, 2), "");
}

TEST(LinesOnScreen, CountsTheLinesOfLongLinesToo) {
    EXPECT_EQ(LinesOnScreen("", 10), 0U);
    EXPECT_EQ(LinesOnScreen("a\n", 10), 1U);
    EXPECT_EQ(LinesOnScreen("a\n\nb", 10), 3U);
    EXPECT_EQ(LinesOnScreen("1234567890\n", 10), 1U);
    EXPECT_EQ(LinesOnScreen("12345678901\n", 10), 2U);
}

}  // namespace
