// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/join_text.h"

#include <string_view>

#include <gtest/gtest.h>

namespace {

using velk::JoinText;

constexpr char kPath[] = "/tmp/file";
constexpr auto kLine = JoinText("rm -f ", kPath, " > /dev/null");

TEST(JoinText, JoinsTheTextsInTheirOrder) {
    EXPECT_STREQ(kLine.c_str(), "rm -f /tmp/file > /dev/null");
    EXPECT_EQ(std::string_view(kLine), "rm -f /tmp/file > /dev/null");
}

TEST(JoinText, AnEmptyTextAddsNothing) {
    constexpr auto kJoined = JoinText("", kPath, "");
    EXPECT_STREQ(kJoined.c_str(), "/tmp/file");
    EXPECT_EQ(sizeof(kJoined), sizeof(kPath));
}

}  // namespace
