// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Words of the form NAME=VALUE.
#include "velkctl/text/assignment.h"

#include <gtest/gtest.h>

namespace {

TEST(Assignment, HasAnEqualsSign) {
    EXPECT_TRUE(velkctl::IsAssignment("ntp=on"));
    EXPECT_TRUE(velkctl::IsAssignment("ntp="));
    EXPECT_FALSE(velkctl::IsAssignment("ntp"));
}

TEST(Assignment, IsNamedWithoutItsValue) {
    EXPECT_EQ(velkctl::WithoutValue("--text=a=b"), "--text");
    EXPECT_EQ(velkctl::WithoutValue("--text"), "--text");
    EXPECT_EQ(velkctl::WithoutValue("=a"), "");
}

}  // namespace
