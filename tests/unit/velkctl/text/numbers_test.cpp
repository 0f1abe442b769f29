// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Numbers in texts.
#include "velkctl/text/numbers.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace {

using velkctl::ParseNumber;

TEST(ParseNumber, ReadsDecimalNumbers) {
    EXPECT_EQ(ParseNumber<uint32_t>("0"), 0U);
    EXPECT_EQ(ParseNumber<uint32_t>("108"), 108U);
    EXPECT_EQ(ParseNumber<uint32_t>("4294967295"), 4294967295U);
    for (const char* word : {"", " 1", "1 ", "+1", "-1", "0x1", "1a", "4294967296"}) {
        EXPECT_EQ(ParseNumber<uint32_t>(word), std::nullopt) << word;
    }
}

TEST(ParseNumber, KeepsWithinItsLimits) {
    EXPECT_EQ(ParseNumber("-3", -3, 7), -3);
    EXPECT_EQ(ParseNumber("7", -3, 7), 7);
    EXPECT_EQ(ParseNumber("-4", -3, 7), std::nullopt);
    EXPECT_EQ(ParseNumber("8", -3, 7), std::nullopt);
}

TEST(ParseLeadingNumber, EndsAfterItsLastDigit) {
    size_t end = 0;
    EXPECT_EQ(velkctl::ParseLeadingNumber<int>("12 a", end), 12);
    EXPECT_EQ(end, 2U);
    EXPECT_EQ(velkctl::ParseLeadingNumber<uint8_t>("fg", end, 16), 15);
    EXPECT_EQ(end, 1U);
    EXPECT_EQ(velkctl::ParseLeadingNumber<int>("a", end), std::nullopt);
}

}  // namespace
