// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Numbers at the start of texts.
#include "lib/base/numbers.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace {

using velk::ParseLeadingNumber;

TEST(ParseLeadingNumber, EndsAfterItsLastDigit) {
    size_t end = 0;
    EXPECT_EQ(ParseLeadingNumber<int>("12 a", end), 12);
    EXPECT_EQ(end, 2U);
    EXPECT_EQ(ParseLeadingNumber<uint8_t>("fg", end, 16), 15);
    EXPECT_EQ(end, 1U);
    EXPECT_EQ(ParseLeadingNumber<int>("-7"), -7);
    EXPECT_EQ(ParseLeadingNumber<uint32_t>("ffffffff", 16), 0xFFFFFFFFU);
}

TEST(ParseLeadingNumber, ReturnsNoValueForATextThatBeginsWithNone) {
    for (const char* text : {"", "a", "+1", " 1"}) {
        EXPECT_EQ(ParseLeadingNumber<int>(text), std::nullopt) << text;
    }
    EXPECT_EQ(ParseLeadingNumber<uint8_t>("256"), std::nullopt);
    EXPECT_EQ(ParseLeadingNumber<uint32_t>("-1"), std::nullopt);
}

}  // namespace
