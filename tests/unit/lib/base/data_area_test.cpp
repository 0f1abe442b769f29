// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/data_area.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "velk.h"

namespace {

using velk::FieldText;
using velk::PutFieldText;

TEST(FieldText, EndsAtTheNul) {
    const char field[8] = "ab";
    EXPECT_EQ(FieldText(field), "ab");
}

TEST(FieldText, EndsAtTheFieldWhenThereIsNoNul) {
    struct {
        char field[4] = {'a', 'b', 'c', 'd'};
        char behind[4] = {'x', 'x', 'x', 'x'};
    } record;
    EXPECT_EQ(FieldText(record.field), "abcd");
}

TEST(FieldText, IsEmptyInAnEmptyField) {
    const char field[4] = {};
    EXPECT_EQ(FieldText(field), "");
}

TEST(PutFieldText, EndsTheTextWithANul) {
    char field[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    PutFieldText(field, "ab");
    EXPECT_EQ(std::string(field, 6), std::string("ab\0xxx", 6));
}

TEST(PutFieldText, CutsTheTextSoThatANulFits) {
    char field[4] = {'x', 'x', 'x', 'x'};
    PutFieldText(field, "abcdef");
    EXPECT_EQ(std::string(field, 4), std::string("abc\0", 4));
}

TEST(PutMac, Writes12UpperCaseDigitsAndANul) {
    char out[16];
    memset(out, 'x', sizeof(out));
    velk::PutMac(out, {0x00, 0x1d, 0x73, 0xaa, 0x0b, 0xff});
    EXPECT_EQ(std::string(out, 16), std::string("001D73AA0BFF\0xxx", 16));
}

}  // namespace
