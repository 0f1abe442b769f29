// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// configuration_fields.cpp - each field of the wireless configuration, from and to its data bytes.
#include <array>
#include <cstring>

#include "lib/wlan/codes.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace velk {
namespace {

constexpr std::array kDot11PhyCodes{Code{2, 0}, Code{3, 1}};
constexpr std::array kServiceSetCodes{Code{1, 1}, Code{2, 0}};
constexpr std::array kSecurityCodes{Code{1, 0}, Code{2, 1}, Code{3, 2}, Code{4, 3}};

constexpr uint16_t kEncryptionWep = 1;

// Writes a number that is the same in record and request. The low byte is not checked.
int PutNumber(uint16_t value, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    out[0] = static_cast<char>(value & 0xFF);
    return LIB_VELK_SUCCESS;
}

int TakeNumber(const char* in, unsigned char highest, uint16_t& value) {
    if (in == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const auto number = static_cast<unsigned char>(in[0]);
    if (number < 1 || number > highest) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    value = number;
    return LIB_VELK_SUCCESS;
}

// Writes a text of the record without a terminator. A length beyond the field is the daemon's
// error.
template <size_t kSize>
int PutBytes(uint16_t length, const char (&field)[kSize], char* out) {
    if (out == nullptr || length > kSize) {
        return LIB_VELK_FAILURE;
    }
    memcpy(out, field, length);
    return LIB_VELK_SUCCESS;
}

// A request's text ends at its NUL or with the data area.
size_t TextLength(const char* in) {
    return strnlen(in, VELK_DATA_SIZE);
}

template <size_t kSize>
int TakeText(const char* in, uint16_t& length, char (&field)[kSize]) {
    if (in == nullptr || TextLength(in) > kSize) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const size_t new_length = TextLength(in);
    memset(field, 0, kSize);
    memcpy(field, in, new_length);
    length = static_cast<uint16_t>(new_length);
    return LIB_VELK_SUCCESS;
}

bool IsWepKeyNumber(int n) {
    return n >= 1 && n <= VELK_WEP_KEYS;
}

// An empty text clears the key. The key in use must not be cleared.
bool IsWepKeyLength(const SMsgConf& conf, int n, size_t length) {
    if (length == 0) {
        return conf.encryption != kEncryptionWep || conf.wep_default != n;
    }
    return length == VELK_WEP_SHORT_KEY || length == VELK_WEP_LONG_KEY ||
           length == VELK_WEP_SHORT_HEX_KEY || length == VELK_WEP_LONG_HEX_KEY;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetDot11PhyConf(const SMsgConf& conf, char* out) {
    const int result = PutCode(kDot11PhyCodes, conf.dot11_phy_conf, out);
    if (result != LIB_VELK_SUCCESS && out != nullptr) {
        out[0] = 3;
    }
    return result;
}

int SetDot11PhyConf(SMsgConf& conf, const char* in) {
    return TakeCode(kDot11PhyCodes, in, conf.dot11_phy_conf);
}

int GetServiceSet(const SMsgConf& conf, char* out) {
    return PutCode(kServiceSetCodes, conf.service_set, out);
}

int SetServiceSet(SMsgConf& conf, const char* in) {
    return TakeCode(kServiceSetCodes, in, conf.service_set);
}

int GetSsid(const SMsgConf& conf, char* out) {
    return PutBytes(conf.ssid_length, conf.ssid, out);
}

int SetSsid(SMsgConf& conf, const char* in) {
    return TakeText(in, conf.ssid_length, conf.ssid);
}

int GetChannel(const SMsgConf& conf, char* out) {
    return PutNumber(conf.channel, out);
}

int SetChannel(SMsgConf& conf, const char* in) {
    return TakeNumber(in, VELK_CHANNELS, conf.channel);
}

int GetEncryption(const SMsgConf& conf, char* out) {
    return PutCode(kSecurityCodes, conf.encryption, out);
}

int SetEncryption(SMsgConf& conf, const char* in) {
    return TakeCode(kSecurityCodes, in, conf.encryption);
}

int GetAuth(const SMsgConf& conf, char* out) {
    return PutCode(kSecurityCodes, conf.auth, out);
}

int SetAuth(SMsgConf& conf, const char* in) {
    return TakeCode(kSecurityCodes, in, conf.auth);
}

int GetWepDefault(const SMsgConf& conf, char* out) {
    return PutNumber(conf.wep_default, out);
}

int SetWepDefault(SMsgConf& conf, const char* in) {
    return TakeNumber(in, VELK_WEP_KEYS, conf.wep_default);
}

int GetPsk(const SMsgConf& conf, char* out) {
    const int result = PutBytes(conf.psk_length, conf.psk, out);
    if (result == LIB_VELK_SUCCESS) {
        out[conf.psk_length] = '\0';
    }
    return result;
}

int SetPsk(SMsgConf& conf, const char* in) {
    return TakeText(in, conf.psk_length, conf.psk);
}

int GetWepKey(const SMsgConf& conf, int n, char* out) {
    if (!IsWepKeyNumber(n)) {
        return LIB_VELK_FAILURE;
    }
    const SWepKey& slot = conf.wep_key[n - 1];
    return PutBytes(slot.length, slot.key, out);
}

int SetWepKey(SMsgConf& conf, int n, const char* in) {
    if (in == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const size_t length = TextLength(in);
    if (!IsWepKeyLength(conf, n, length)) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (!IsWepKeyNumber(n)) {
        return LIB_VELK_FAILURE;
    }
    SWepKey& slot = conf.wep_key[n - 1];
    slot.length = static_cast<uint16_t>(length);
    memcpy(slot.key, in, length);  // the rest of an older key stays; only `length` bytes count
    return LIB_VELK_SUCCESS;
}

int GetWepKey1(const SMsgConf& conf, char* out) {
    return GetWepKey(conf, 1, out);
}

int GetWepKey2(const SMsgConf& conf, char* out) {
    return GetWepKey(conf, 2, out);
}

int GetWepKey3(const SMsgConf& conf, char* out) {
    return GetWepKey(conf, 3, out);
}

int GetWepKey4(const SMsgConf& conf, char* out) {
    return GetWepKey(conf, 4, out);
}

int SetWepKey1(SMsgConf& conf, const char* in) {
    return SetWepKey(conf, 1, in);
}

int SetWepKey2(SMsgConf& conf, const char* in) {
    return SetWepKey(conf, 2, in);
}

int SetWepKey3(SMsgConf& conf, const char* in) {
    return SetWepKey(conf, 3, in);
}

int SetWepKey4(SMsgConf& conf, const char* in) {
    return SetWepKey(conf, 4, in);
}
