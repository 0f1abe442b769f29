// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/raw_values.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/settings/kinds_of_settings.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Data;
using velkctl::HexBytesKind;
using velkctl::kMacAddress;
using velkctl::kRate;
using velkctl::kSignal;

TEST(HexBytesKind, ShowsBytesOfAnyValue) {
    Data data{};
    EXPECT_EQ(kRate.Print(data), "00000000");
    memcpy(data.data(), "\x01\x9b\xff\x0a\x77", 5);
    EXPECT_EQ(kRate.Print(data), "019bff0a");
    EXPECT_EQ(HexBytesKind(1, "").Print(data), "01");
}

Data TextData(const std::string& text) {
    Data data{};
    (void)text.copy(data.data(), data.size());
    return data;
}

TEST(MacAddressKind, ShowsTwelveHexDigitsWithColons) {
    EXPECT_EQ(kMacAddress.Print(TextData("020000000010")), "02:00:00:00:00:10");
    EXPECT_EQ(kMacAddress.Print(TextData("001D73AA0BFF")), "00:1D:73:AA:0B:FF");
    EXPECT_EQ(kMacAddress.ToJson(TextData("020000000010")).dump(), "\"02:00:00:00:00:10\"");
}

TEST(MacAddressKind, ShowsAnyOtherTextUnchanged) {
    EXPECT_EQ(kMacAddress.Print(TextData("")), "none");
    EXPECT_EQ(kMacAddress.ToJson(TextData("")).dump(), "null");
    EXPECT_EQ(kMacAddress.Print(TextData("02000000001")), "02000000001");
    EXPECT_EQ(kMacAddress.Print(TextData("0200000000100")), "0200000000100");
    EXPECT_EQ(kMacAddress.Print(TextData("02000000001g")), "02000000001g");
    EXPECT_EQ(kMacAddress.Print(TextData("\x1b")), "\\x1b");
}

TEST(NumberPairKind, ShowsBothNumbersInTheDevicesByteOrder) {
    const uint16_t pair[2] = {65535, 258};
    Data data{};
    EXPECT_EQ(kSignal.Print(data), "0 0");
    memcpy(data.data(), pair, sizeof(pair));
    EXPECT_EQ(kSignal.Print(data), "65535 258");
    data[4] = 1;
    EXPECT_EQ(kSignal.Print(data), "65535 258");
}

TEST(RawValues, CannotBeParsed) {
    const std::vector<std::string> words{"01020304"};
    EXPECT_EQ(kRate.Parse(words).problem, "cannot be set, only read");
    EXPECT_EQ(kSignal.Parse(words).problem, "cannot be set, only read");
}

}  // namespace
