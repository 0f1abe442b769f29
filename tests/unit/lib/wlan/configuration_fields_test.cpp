// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Every field alone: every byte and every length, and the bytes that a setter must not change.
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/machine.h"
#include "unit/lib/wlan/bytes.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace {

using testkit::Bytes;

using Getter = int (*)(const SMsgConf&, char*);
using Setter = int (*)(SMsgConf&, const char*);

// A record in which every byte differs from its neighbours, and no length is beyond its field.
SMsgConf Patterned() {
    SMsgConf conf;
    auto* bytes = reinterpret_cast<unsigned char*>(&conf);
    for (size_t i = 0; i < sizeof(conf); ++i) {
        bytes[i] = static_cast<unsigned char>(i * 7 + 13);
    }
    conf.encryption = 0;
    return conf;
}

// The record's bytes with those of one field cut out.
std::string BytesBeside(const SMsgConf& conf, size_t offset, size_t size) {
    return Bytes(conf).erase(offset, size);
}

std::string Get(Getter getter, const SMsgConf& conf, int expected = 0) {
    char out[VELK_DATA_SIZE];
    memset(out, 0x55, sizeof(out));
    EXPECT_EQ(getter(conf, out), expected);
    const std::string written(out, sizeof(out));
    return written.substr(0, written.find_last_not_of('\x55') + 1);
}

// ---- Fields of one byte ------------------------------------------------------------------------

struct ByteField {
    const char* name;
    Getter getter;
    Setter setter;
    size_t offset;
    std::map<int, int> values;  // request byte -> record value
};

const std::map<int, int> kSame13 = {{1, 1}, {2, 2}, {3, 3},   {4, 4},   {5, 5},   {6, 6},  {7, 7},
                                    {8, 8}, {9, 9}, {10, 10}, {11, 11}, {12, 12}, {13, 13}};
const std::map<int, int> kSame4 = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
const std::map<int, int> kMinusOne = {{1, 0}, {2, 1}, {3, 2}, {4, 3}};

class ByteFieldTest : public testing::TestWithParam<ByteField> {
  protected:
    static uint16_t ValueIn(const SMsgConf& conf) {
        uint16_t value = 0;
        memcpy(&value, Bytes(conf).data() + GetParam().offset, sizeof(value));
        return value;
    }
};

TEST_P(ByteFieldTest, EveryValidByteIsStoredAndEveryOtherRefused) {
    for (int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        SMsgConf conf = Patterned();
        const char in[2] = {static_cast<char>(byte), 'x'};
        const auto found = GetParam().values.find(byte);
        if (found == GetParam().values.end()) {
            EXPECT_EQ(GetParam().setter(conf, in), -4);
            EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
        } else {
            EXPECT_EQ(GetParam().setter(conf, in), 0);
            EXPECT_EQ(ValueIn(conf), found->second);
        }
        EXPECT_EQ(BytesBeside(conf, GetParam().offset, 2),
                  BytesBeside(Patterned(), GetParam().offset, 2));
    }
}

TEST_P(ByteFieldTest, ASetValueIsReadBack) {
    for (const auto& [byte, value] : GetParam().values) {
        SMsgConf conf = Patterned();
        const char in[1] = {static_cast<char>(byte)};
        ASSERT_EQ(GetParam().setter(conf, in), 0);
        EXPECT_EQ(Get(GetParam().getter, conf), std::string(1, static_cast<char>(byte)));
    }
}

TEST_P(ByteFieldTest, NullPointersAreRefused) {
    SMsgConf conf = Patterned();
    EXPECT_EQ(GetParam().setter(conf, nullptr), -4);
    EXPECT_EQ(GetParam().getter(conf, nullptr), -1);
    EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
}

INSTANTIATE_TEST_SUITE_P(
    Fields, ByteFieldTest,
    testing::Values(ByteField{"ServiceSet", GetServiceSet, SetServiceSet, 34, {{1, 1}, {2, 0}}},
                    ByteField{"Dot11Phy", GetDot11PhyConf, SetDot11PhyConf, 36, {{2, 0}, {3, 1}}},
                    ByteField{"Channel", GetChannel, SetChannel, 38, kSame13},
                    ByteField{"Auth", GetAuth, SetAuth, 40, kMinusOne},
                    ByteField{"Encryption", GetEncryption, SetEncryption, 42, kMinusOne},
                    ByteField{"WepDefault", GetWepDefault, SetWepDefault, 44, kSame4}),
    [](const auto& field) { return field.param.name; });

TEST(ConfigurationFields, UnknownRecordValuesAreFailuresAndWriteNothing) {
    for (const unsigned value : {4U, 255U, 256U, 65535U}) {
        SMsgConf conf = Patterned();
        conf.service_set = conf.auth = conf.encryption = static_cast<uint16_t>(value);
        EXPECT_EQ(Get(GetServiceSet, conf, -1), "");
        EXPECT_EQ(Get(GetAuth, conf, -1), "");
        EXPECT_EQ(Get(GetEncryption, conf, -1), "");
    }
    SMsgConf conf = Patterned();
    conf.service_set = 2;
    EXPECT_EQ(Get(GetServiceSet, conf, -1), "");
}

TEST(ConfigurationFields, UnknownStandardsAreAnsweredWithThreeBesideTheFailure) {
    SMsgConf conf = Patterned();
    for (const unsigned value : {2U, 256U, 65535U}) {
        conf.dot11_phy_conf = static_cast<uint16_t>(value);
        EXPECT_EQ(Get(GetDot11PhyConf, conf, -1), "\3");
    }
}

TEST(ConfigurationFields, NumbersReturnTheirLowByteOfAnyValue) {
    SMsgConf conf = Patterned();
    conf.channel = 0x1263;
    conf.wep_default = 0xFF00;
    EXPECT_EQ(Get(GetChannel, conf), "\x63");
    EXPECT_EQ(Get(GetWepDefault, conf), std::string(1, '\0'));
}

// ---- Texts -------------------------------------------------------------------------------------

TEST(Ssid, TextsOf0To32BytesAreStoredAndReadBack) {
    for (size_t length = 0; length <= 70; ++length) {
        SCOPED_TRACE(length);
        SMsgConf conf = Patterned();
        const std::string text(length, 's');
        EXPECT_EQ(SetSsid(conf, text.c_str()), length <= 32 ? 0 : -4);
        if (length > 32) {
            EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
            continue;
        }
        EXPECT_EQ(conf.ssid_length, length);
        EXPECT_EQ(std::string(conf.ssid, 32), text + std::string(32 - length, '\0'));
        EXPECT_EQ(BytesBeside(conf, 0, 34), BytesBeside(Patterned(), 0, 34));
        EXPECT_EQ(Get(GetSsid, conf), text) << "no terminator is written";
    }
}

TEST(Psk, TextsOf0To64BytesAreStoredAndReadBackWithATerminator) {
    for (size_t length = 0; length <= 70; ++length) {
        SCOPED_TRACE(length);
        SMsgConf conf = Patterned();
        const std::string text(length, 'p');
        EXPECT_EQ(SetPsk(conf, text.c_str()), length <= 64 ? 0 : -4);
        if (length > 64) {
            EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
            continue;
        }
        EXPECT_EQ(conf.psk_length, length);
        EXPECT_EQ(std::string(conf.psk, 64), text + std::string(64 - length, '\0'));
        EXPECT_EQ(BytesBeside(conf, 168, 66), BytesBeside(Patterned(), 168, 66));
        EXPECT_EQ(Get(GetPsk, conf), text + '\0');
    }
}

TEST(Texts, ATextWithoutANulEndsWithTheDataArea) {
    char data[VELK_DATA_SIZE];
    memset(data, 'x', sizeof(data));
    SMsgConf conf = Patterned();
    EXPECT_EQ(SetSsid(conf, data), -4);
    EXPECT_EQ(SetPsk(conf, data), -4);
    EXPECT_EQ(SetWepKey(conf, 1, data), -4);
}

TEST(Texts, LengthsBeyondTheirFieldsAreFailuresAndWriteNothing) {
    SMsgConf conf = Patterned();
    for (const unsigned length : {33U, 255U, 65535U}) {
        conf.ssid_length = static_cast<uint16_t>(length);
        EXPECT_EQ(Get(GetSsid, conf, -1), "");
    }
    for (const unsigned length : {65U, 512U, 65535U}) {
        conf.psk_length = static_cast<uint16_t>(length);
        EXPECT_EQ(Get(GetPsk, conf, -1), "");
    }
    for (const unsigned length : {29U, 30U, 65535U}) {
        conf.wep_key[3].length = static_cast<uint16_t>(length);
        EXPECT_EQ(Get(GetWepKey4, conf, -1), "");
    }
}

TEST(Texts, LengthsThatFillTheirFieldsAreRead) {
    SMsgConf conf = Patterned();
    conf.ssid_length = 32;
    EXPECT_EQ(Get(GetSsid, conf), std::string(conf.ssid, 32));
    conf.psk_length = 64;
    EXPECT_EQ(Get(GetPsk, conf), std::string(conf.psk, 64) + '\0');
    conf.wep_key[0].length = 28;
    EXPECT_EQ(Get(GetWepKey1, conf), std::string(conf.wep_key[0].key, 28));
}

TEST(Texts, NullPointersAreRefused) {
    SMsgConf conf = Patterned();
    EXPECT_EQ(SetSsid(conf, nullptr), -4);
    EXPECT_EQ(SetPsk(conf, nullptr), -4);
    EXPECT_EQ(SetWepKey(conf, 1, nullptr), -4);
    EXPECT_EQ(GetSsid(conf, nullptr), -1);
    EXPECT_EQ(GetPsk(conf, nullptr), -1);
    EXPECT_EQ(GetWepKey(conf, 1, nullptr), -1);
    EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
}

// ---- WEP keys ----------------------------------------------------------------------------------

class WepKeyTest : public testing::TestWithParam<int> {
  protected:
    static size_t Slot() { return 48 + 30 * static_cast<size_t>(GetParam() - 1); }
};

TEST_P(WepKeyTest, OnlyKeysOfTheFourLengthsAndNoneAreStored) {
    for (size_t length = 0; length <= 70; ++length) {
        SCOPED_TRACE(length);
        SMsgConf conf = Patterned();
        const std::string key(length, 'k');
        const bool fits =
            length == 0 || length == 5 || length == 10 || length == 13 || length == 26;
        EXPECT_EQ(SetWepKey(conf, GetParam(), key.c_str()), fits ? 0 : -4);
        if (!fits) {
            EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
            continue;
        }
        EXPECT_EQ(BytesBeside(conf, Slot(), 2 + length),
                  BytesBeside(Patterned(), Slot(), 2 + length))
            << "the tail of an older key stays";
        EXPECT_EQ(Bytes(conf).substr(Slot() + 2, length), key);
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetWepKey(conf, GetParam(), out), 0);
        EXPECT_EQ(std::string(out), key);
    }
}

TEST_P(WepKeyTest, TheKeyInUseCannotBeClearedWhileTheEncryptionIsWep) {
    SMsgConf conf = Patterned();
    conf.encryption = 1;
    conf.wep_default = static_cast<uint16_t>(GetParam());
    const std::string before = Bytes(conf);
    EXPECT_EQ(SetWepKey(conf, GetParam(), ""), -4);
    EXPECT_EQ(Bytes(conf), before);
    EXPECT_EQ(SetWepKey(conf, GetParam(), "12345"), 0) << "another key can take its place";
    conf.wep_default = static_cast<uint16_t>(GetParam() % 4 + 1);
    EXPECT_EQ(SetWepKey(conf, GetParam(), ""), 0);
    for (const unsigned encryption : {0U, 2U, 3U}) {
        conf.encryption = static_cast<uint16_t>(encryption);
        conf.wep_default = static_cast<uint16_t>(GetParam());
        EXPECT_EQ(SetWepKey(conf, GetParam(), ""), 0);
    }
}

TEST_P(WepKeyTest, AShorterKeyLeavesTheTailOfAnOlderOne) {
    SMsgConf conf = Patterned();
    ASSERT_EQ(SetWepKey(conf, GetParam(), "abcdefghijklm"), 0);
    ASSERT_EQ(SetWepKey(conf, GetParam(), "12345"), 0);
    EXPECT_EQ(Bytes(conf).substr(Slot() + 2, 13), "12345fghijklm");
    EXPECT_EQ(Bytes(conf).substr(Slot(), 2), testkit::ShortBytes(5));
}

INSTANTIATE_TEST_SUITE_P(Keys, WepKeyTest, testing::Values(1, 2, 3, 4));

TEST(WepKeys, TheNumberedFunctionsUseTheirSlots) {
    SMsgConf conf = Patterned();
    const Setter setters[] = {SetWepKey1, SetWepKey2, SetWepKey3, SetWepKey4};
    const Getter getters[] = {GetWepKey1, GetWepKey2, GetWepKey3, GetWepKey4};
    const char* keys[] = {"11111", "22222", "33333", "44444"};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(setters[i](conf, keys[i]), 0);
    }
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Get(getters[i], conf), keys[i]);
        EXPECT_EQ(std::string(conf.wep_key[i].key, 5), keys[i]);
    }
}

TEST(WepKeys, OtherNumbersAreFailures) {
    SMsgConf conf = Patterned();
    for (const int n : {-1, 0, 5, 1000}) {
        char out[VELK_DATA_SIZE] = "unchanged";
        EXPECT_EQ(GetWepKey(conf, n, out), -1);
        EXPECT_STREQ(out, "unchanged");
        EXPECT_EQ(SetWepKey(conf, n, "12345"), -1);
        EXPECT_EQ(SetWepKey(conf, n, "123456"), -4) << "the length is looked at first";
        EXPECT_EQ(SetWepKey(conf, n, ""), -1);
    }
    EXPECT_EQ(Bytes(conf), Bytes(Patterned()));
}

TEST(WepKeys, TheClearRuleComesBeforeTheNumber) {
    SMsgConf conf = Patterned();
    conf.encryption = 1;
    conf.wep_default = 5;
    EXPECT_EQ(SetWepKey(conf, 5, ""), -4);
}

}  // namespace
