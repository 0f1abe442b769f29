// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wlan/codes.h"

#include <array>

#include <gtest/gtest.h>

namespace {

using velk::Code;
using velk::PutCode;
using velk::TakeCode;

constexpr std::array kCodes{Code{2, 0}, Code{3, 1}};

TEST(Codes, AValueIsWrittenAsItsByte) {
    char out = 'x';
    EXPECT_EQ(PutCode(kCodes, 1, &out), 0);
    EXPECT_EQ(out, 3);
}

TEST(Codes, AnUnknownValueWritesNothing) {
    char out = 'x';
    EXPECT_EQ(PutCode(kCodes, 2, &out), -1);
    EXPECT_EQ(PutCode(kCodes, 0x100, &out), -1);
    EXPECT_EQ(out, 'x');
    EXPECT_EQ(PutCode(kCodes, 1, nullptr), -1);
}

TEST(Codes, AByteIsStoredAsItsValue) {
    uint16_t value = 7;
    EXPECT_EQ(TakeCode(kCodes, "\2", value), 0);
    EXPECT_EQ(value, 0);
}

TEST(Codes, AnUnknownByteStoresNothing) {
    uint16_t value = 7;
    EXPECT_EQ(TakeCode(kCodes, "\1", value), -4);
    EXPECT_EQ(TakeCode(kCodes, "", value), -4);
    EXPECT_EQ(TakeCode(kCodes, nullptr, value), -4);
    EXPECT_EQ(value, 7);
}

}  // namespace
