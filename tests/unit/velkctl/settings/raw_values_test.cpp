#include "velkctl/settings/raw_values.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/settings/kinds_of_settings.h"

namespace {

using velkctl::Data;
using velkctl::HexBytesKind;
using velkctl::kRate;
using velkctl::kSignal;

TEST(HexBytesKind, ShowsBytesOfAnyValue) {
    Data data{};
    EXPECT_EQ(kRate.Print(data), "00000000");
    memcpy(data.data(), "\x01\x9b\xff\x0a\x77", 5);
    EXPECT_EQ(kRate.Print(data), "019bff0a");
    EXPECT_EQ(HexBytesKind(1).Print(data), "01");
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
