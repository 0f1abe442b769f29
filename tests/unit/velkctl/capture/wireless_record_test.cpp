// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The wireless daemon's answers, put together from values.
#include "velkctl/capture/wireless_record.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "velk/request.h"
#include "velk/wlan.h"

namespace {

using velkctl::Data;
using velkctl::KeysOf;
using velkctl::WirelessRecord;
using velkctl::WirelessValues;

Data TextData(const std::string& text) {
    Data data{};
    text.copy(data.data(), data.size());
    return data;
}

TEST(WirelessRecord, IsEmptyWithoutAConfiguration) {
    EXPECT_EQ(WirelessRecord({}), "");
    EXPECT_TRUE(KeysOf({}).empty());
}

TEST(WirelessRecord, HasEachValueAndNoKey) {
    const WirelessValues values{{VELK_CMD_SSID, TextData("lab")},
                                {VELK_CMD_SERVICE_SET, TextData("\2")},
                                {VELK_CMD_STANDARDS_ENABLED, TextData("\2")},
                                {VELK_CMD_CHANNEL, TextData("\13")},
                                {VELK_CMD_AUTHENTICATION, TextData("\3")},
                                {VELK_CMD_ENCRYPTION, TextData("\2")},
                                {VELK_CMD_WEP_DEFAULT_KEY, TextData("\4")},
                                {VELK_CMD_WEP_KEY_2, TextData("desk1")},
                                {VELK_CMD_PSK, TextData("the long key")}};
    const std::string bytes = WirelessRecord(values);
    ASSERT_EQ(bytes.size(), sizeof(SMsgConf));
    SMsgConf conf{};
    memcpy(&conf, bytes.data(), sizeof(conf));
    EXPECT_EQ(std::string(conf.ssid, conf.ssid_length), "lab");
    EXPECT_EQ(conf.service_set, 0);
    EXPECT_EQ(conf.dot11_phy_conf, 0);
    EXPECT_EQ(conf.channel, 11);
    EXPECT_EQ(conf.auth, 2);
    EXPECT_EQ(conf.encryption, 1);
    EXPECT_EQ(conf.wep_default, 4);
    EXPECT_EQ(conf.wep_key[0].length, 0);
    EXPECT_EQ(std::string(conf.wep_key[1].key, conf.wep_key[1].length), "00000");
    EXPECT_EQ(std::string(conf.psk, conf.psk_length), "000000000000");
    EXPECT_EQ(KeysOf(values), (std::vector<std::string>{"the long key", "desk1"}));
}

TEST(WirelessRecord, HasTheStateIfItIsKnown) {
    const std::string bytes = WirelessRecord({{VELK_CMD_SSID, TextData("lab")},
                                              {VELK_CMD_REGION, TextData("\3")},
                                              {VELK_CMD_STANDARD, TextData("\1")},
                                              {VELK_CMD_HARDWARE_VERSION, TextData(" 1.01")},
                                              {VELK_CMD_SOFTWARE_VERSION, TextData("2.4.1")},
                                              {VELK_CMD_ACCESS_POINT, TextData("001D73AA0BFF")},
                                              {VELK_CMD_RATE, TextData("\1\2\3\4")},
                                              {VELK_CMD_SIGNAL, TextData("\5\6\7\10")}});
    ASSERT_EQ(bytes.size(), sizeof(SMsgConf) + sizeof(SMsgState));
    SMsgState state{};
    memcpy(&state, bytes.data() + sizeof(SMsgConf), sizeof(state));
    EXPECT_STREQ(state.product, "Rev=  1.01");
    EXPECT_STREQ(state.software_version, "2.4.1");
    EXPECT_EQ(state.region, 2);
    EXPECT_EQ(state.dot11_phy, 0);
    EXPECT_EQ(memcmp(state.access_point, "\x00\x1d\x73\xaa\x0b\xff", 6), 0);
    EXPECT_EQ(memcmp(state.rate, "\1\2\3\4", 4), 0);
    EXPECT_EQ(memcmp(state.signal, "\5\6\7\10", 4), 0);
}

}  // namespace
