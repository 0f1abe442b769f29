// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Data bytes that are masked in output.
#include "velkctl/text/masking.h"

#include <gtest/gtest.h>

namespace {

using velkctl::Data;
using velkctl::IsMasked;

constexpr Data kKey{'k', 'e', 'y'};

TEST(Masking, HidesASecretUnlessItMayBeShown) {
    EXPECT_TRUE(IsMasked(/*is_secret=*/true, /*show_secrets=*/false, kKey));
    EXPECT_FALSE(IsMasked(/*is_secret=*/true, /*show_secrets=*/true, kKey));
    EXPECT_FALSE(IsMasked(/*is_secret=*/false, /*show_secrets=*/false, kKey));
}

TEST(Masking, HidesASecretThatBeginsWithZeros) {
    Data data{};
    data.back() = 'y';
    EXPECT_TRUE(IsMasked(/*is_secret=*/true, /*show_secrets=*/false, data));
}

TEST(Masking, ShowsThatASecretIsMissing) {
    EXPECT_FALSE(IsMasked(/*is_secret=*/true, /*show_secrets=*/false, {}));
}

}  // namespace
