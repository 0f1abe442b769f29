// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A long text without a terminal. The device tests show it at one.
#include "velkctl/files/pager.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(Pager, IsNotUsedWithoutATerminal) {
    const std::string text(100, '\n');
    testing::internal::CaptureStdout();
    EXPECT_FALSE(velkctl::HasPager());
    velkctl::PrintPaged(text);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), text);
}

}  // namespace
