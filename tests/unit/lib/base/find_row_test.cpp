// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/find_row.h"

#include <array>

#include <gtest/gtest.h>

namespace {

using velk::FindRow;

struct Row {
    int id;
    const char* name;
};

constexpr std::array<Row, 3> kRows{{{1, "one"}, {2, "two"}, {2, "another two"}}};

TEST(FindRow, ReturnsTheFirstRowWithTheId) {
    EXPECT_STREQ(FindRow(kRows, 1, &Row::id)->name, "one");
    EXPECT_STREQ(FindRow(kRows, 2, &Row::id)->name, "two");
}

TEST(FindRow, ReturnsNullForAnIdOfNoRow) {
    EXPECT_EQ(FindRow(kRows, 3, &Row::id), nullptr);
    EXPECT_EQ(FindRow(std::array<Row, 0>{}, 1, &Row::id), nullptr);
}

}  // namespace
