// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The text of a record must show each of its bytes, and a number as a number.
#include "wire/record_text.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

using wire::BytesText;

TEST(RecordText, BytesAreHexadecimalAndLongRunsOfZerosAreCounted) {
    EXPECT_EQ(BytesText("", {}), "");
    EXPECT_EQ(BytesText("ab\xff", {}), "6162ff");
    EXPECT_EQ(BytesText(std::string("\0\0\0\0", 4), {}), "00000000");
    EXPECT_EQ(BytesText(std::string("a\0\0\0\0\0b", 7), {}), "61 00*5 62");
}

TEST(RecordText, ANumberIsTheSameInAnyByteOrder) {
    const uint16_t small = 0x0102;
    const uint32_t large = 0x01020304;
    char bytes[8] = "a";
    memcpy(bytes + 1, &small, sizeof(small));
    memcpy(bytes + 3, &large, sizeof(large));
    bytes[7] = 'z';
    EXPECT_EQ(BytesText({bytes, sizeof(bytes)}, {{1, 2}, {3, 4}}), "61 <0102> <01020304> 7a");
}

TEST(RecordText, ARequestHasTwoNumbersAndThoseOfItsData) {
    const uint16_t value = 9;
    _velk_request request = testkit::MakeRequest(VELK_GET, VELK_CMD_SIGNAL, "eth1");
    EXPECT_EQ(wire::RecordText(request), "65746831 00*12 <00000001> <0000013d> 00*512");
    memcpy(request.data + 2, &value, sizeof(value));
    EXPECT_EQ(wire::RecordText(request, {{2, 2}}),
              "65746831 00*12 <00000001> <0000013d> 0000 <0009> 00*508");
}

TEST(RecordText, AMessageHasTheNumbersOfAConfiguration) {
    struct {
        int16_t type = VELK_WLAN_STORE;
        char zero[2]{};
        SMsgConf conf{};
    } message;
    message.conf.channel = 6;
    message.conf.wep_key[3].length = 13;
    message.conf.psk_length = 1;
    message.conf.psk[0] = 'p';
    EXPECT_EQ(wire::MessageText({reinterpret_cast<const char*>(&message), sizeof(message)}),
              "<0002> 0000 <0000> 00*32 <0000> <0000> <0006> <0000> <0000> <0000> 0000 "
              "<0000> 00*28 <0000> 00*28 <0000> 00*28 <000d> 00*28 <0001> 70 00*65");
    EXPECT_EQ(wire::MessageText("short"), "73686f7274");
}

}  // namespace
