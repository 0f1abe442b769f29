// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/comment_switch.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velk::IsCommentedOut;
using velk::SwitchLine;

constexpr size_t kAnywhere = std::string_view::npos;
constexpr bool kOn = true;
constexpr bool kOff = false;

TEST(IsCommentedOut, AHashBeforeThePlaceCommentsItOut) {
    EXPECT_TRUE(IsCommentedOut("#x\n", 1));
    EXPECT_TRUE(IsCommentedOut("  # x\n", 4));
    EXPECT_TRUE(IsCommentedOut("a # x\n", 4));
    EXPECT_TRUE(IsCommentedOut("## x\n", 3));
}

TEST(IsCommentedOut, AHashAtThePlaceItselfCounts) {
    EXPECT_TRUE(IsCommentedOut("#x\n", 0));
    EXPECT_TRUE(IsCommentedOut("a #x\n", 2));
}

TEST(IsCommentedOut, AHashAfterThePlaceDoesNotCount) {
    EXPECT_FALSE(IsCommentedOut("x # y\n", 0));
    EXPECT_FALSE(IsCommentedOut("a x#\n", 2));
}

TEST(IsCommentedOut, ALineWithoutAHashIsNotCommentedOut) {
    EXPECT_FALSE(IsCommentedOut("x\n", 0));
    EXPECT_FALSE(IsCommentedOut("x\n", kAnywhere));
    EXPECT_FALSE(IsCommentedOut("", 0));
    EXPECT_FALSE(IsCommentedOut("", kAnywhere));
}

TEST(IsCommentedOut, AnyHashCountsWithoutAPlace) {
    EXPECT_TRUE(IsCommentedOut("#x\n", kAnywhere));
    EXPECT_TRUE(IsCommentedOut("x; # y\n", kAnywhere));
    EXPECT_TRUE(IsCommentedOut("#", kAnywhere));
}

TEST(SwitchLine, OffPutsAHashIntoColumnOne) {
    EXPECT_EQ(SwitchLine("cmd\n", 0, kOff), "#cmd\n");
    EXPECT_EQ(SwitchLine("  cmd\n", 2, kOff), "#  cmd\n");
    EXPECT_EQ(SwitchLine("\tcmd -x\n", 1, kOff), "#\tcmd -x\n");
    EXPECT_EQ(SwitchLine("\n", kAnywhere, kOff), "#\n");
    EXPECT_EQ(SwitchLine("", kAnywhere, kOff), "#");
}

TEST(SwitchLine, OnDeletesTheHash) {
    EXPECT_EQ(SwitchLine("#cmd\n", 1, kOn), "cmd\n");
    EXPECT_EQ(SwitchLine("  #cmd\n", 3, kOn), "  cmd\n");
    EXPECT_EQ(SwitchLine("# cmd\n", 2, kOn), " cmd\n");
    EXPECT_EQ(SwitchLine("#\n", kAnywhere, kOn), "\n");
}

TEST(SwitchLine, OnDeletesTheFirstHashOnly) {
    EXPECT_EQ(SwitchLine("##cmd\n", 2, kOn), "#cmd\n");
    EXPECT_EQ(SwitchLine("#cmd # why\n", 1, kOn), "cmd # why\n");
    EXPECT_EQ(SwitchLine("a # b # cmd\n", 8, kOn), "a  b # cmd\n");
}

TEST(SwitchLine, ALineAlreadyInTheWantedStateStaysUnchanged) {
    EXPECT_EQ(SwitchLine("#cmd\n", 1, kOff), "#cmd\n");
    EXPECT_EQ(SwitchLine("  # cmd\n", 4, kOff), "  # cmd\n");
    EXPECT_EQ(SwitchLine("cmd\n", 0, kOn), "cmd\n");
}

TEST(SwitchLine, ACommentAfterThePlaceDoesNotSwitchItOff) {
    EXPECT_EQ(SwitchLine("cmd # why\n", 0, kOn), "cmd # why\n");
    EXPECT_EQ(SwitchLine("cmd # why\n", 0, kOff), "#cmd # why\n");
}

TEST(SwitchLine, WithoutAPlaceATrailingCommentCounts) {
    EXPECT_EQ(SwitchLine("request x; # why\n", kAnywhere, kOff), "request x; # why\n");
    EXPECT_EQ(SwitchLine("request x; # why\n", kAnywhere, kOn), "request x;  why\n");
    EXPECT_EQ(SwitchLine("request x;\n", kAnywhere, kOff), "#request x;\n");
    EXPECT_EQ(SwitchLine("#request x;\n", kAnywhere, kOn), "request x;\n");
}

TEST(SwitchLine, ANulByteIsACharacterOfTheLine) {
    using std::string_literals::operator""s;
    EXPECT_EQ(SwitchLine("a\0cmd\n"s, 2, kOff), "#a\0cmd\n"s);
    EXPECT_EQ(SwitchLine("\0#cmd\n"s, 2, kOn), "\0cmd\n"s);
}

}  // namespace
