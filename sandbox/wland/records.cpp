// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// records.cpp - the configuration and state that the daemon reports.
#include "sandbox/wland/records.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string_view>

#include "sandbox/process/failure.h"

namespace wland {
namespace {

constexpr uint16_t kInfrastructure = 1;
constexpr uint8_t kAccessPoint[] = {0x00, 0x1d, 0x73, 0xaa, 0x0b, 0xff};
constexpr uint8_t kRate[] = {0x82, 0x84, 0x8b, 0x96};
constexpr uint16_t kSignal[] = {52, 95};

// Copies the text into the field. Returns its length, which the records store separately.
template <size_t kSize>
uint16_t Put(std::string_view text, char (&field)[kSize]) {
    return static_cast<uint16_t>(text.copy(field, kSize));
}

}  // namespace

SMsgConf StartConfiguration() {
    SMsgConf conf{};
    conf.ssid_length = Put("velk-lab", conf.ssid);
    conf.service_set = kInfrastructure;
    conf.dot11_phy_conf = 1;
    conf.channel = 6;
    conf.auth = 1;
    conf.encryption = 2;
    conf.wep_default = 1;
    conf.wep_key[0].length = Put("desk1", conf.wep_key[0].key);
    conf.psk_length = Put("sample-key-of-the-desk", conf.psk);
    return conf;
}

SMsgState StateOf(const SMsgConf& conf) {
    SMsgState state{};
    (void)Put("P:  Vendor=2c51 ProdID=0a12 Rev= 1.01", state.product);
    (void)Put("2.4.1", state.software_version);
    state.region = 1;
    // The state has one more standard than the configuration, with the lowest number.
    state.dot11_phy = conf.dot11_phy_conf == 0 ? 1 : 2;
    if (conf.ssid_length == 0) {
        return state;  // not connected
    }
    if (conf.service_set == kInfrastructure) {
        std::copy(std::begin(kAccessPoint), std::end(kAccessPoint), state.access_point);
    }
    std::copy(std::begin(kRate), std::end(kRate), state.rate);
    std::copy(std::begin(kSignal), std::end(kSignal), state.signal);
    return state;
}

Records ReadRecords(const std::string& file) {
    std::ifstream bytes(file, std::ios::binary);
    Records records;
    SMsgState state{};
    if (!bytes.read(reinterpret_cast<char*>(&records.conf), sizeof(records.conf))) {
        throw sandbox::Failure(file + " has no configuration");
    }
    if (bytes.read(reinterpret_cast<char*>(&state), sizeof(state))) {
        records.state = state;
    }
    return records;
}

}  // namespace wland
