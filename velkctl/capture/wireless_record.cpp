// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_record.cpp - the wireless daemon's answers, put together from the values of settings.
#include "velkctl/capture/wireless_record.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "velk/request.h"
#include "velk/wlan.h"
#include "velkctl/capture/blanked_text.h"

namespace velkctl {
namespace {

constexpr std::array<uint32_t, VELK_WEP_KEYS> kWepKeys{VELK_CMD_WEP_KEY_1, VELK_CMD_WEP_KEY_2,
                                                       VELK_CMD_WEP_KEY_3, VELK_CMD_WEP_KEY_4};
constexpr std::string_view kRevision = "Rev= ";

std::string_view TextOf(const Data& data) {
    return {data.data(), strnlen(data.data(), data.size())};
}

class Values {
  public:
    explicit Values(const WirelessValues& values) : values_(values) {}

    bool Has(uint32_t id) const { return values_.contains(id); }
    Data Get(uint32_t id) const { return Has(id) ? values_.at(id) : Data{}; }
    std::string_view Text(uint32_t id) const {
        return Has(id) ? TextOf(values_.at(id)) : std::string_view();
    }
    // Returns the number of a value that counts from 1, counted from 0.
    uint16_t Code(uint32_t id) const {
        const char first = Get(id)[0];
        return static_cast<uint16_t>(first > 0 ? first - 1 : 0);
    }

  private:
    const WirelessValues& values_;
};

template <size_t kSize>
uint16_t Put(std::string_view text, char (&field)[kSize]) {
    return static_cast<uint16_t>(text.copy(field, kSize));
}

SMsgConf ConfigurationOf(const Values& values) {
    SMsgConf conf{};
    conf.ssid_length = Put(values.Text(VELK_CMD_SSID), conf.ssid);
    conf.service_set = values.Code(VELK_CMD_SERVICE_SET) == 0 ? 1 : 0;
    conf.dot11_phy_conf = values.Get(VELK_CMD_STANDARDS_ENABLED)[0] == 2 ? 0 : 1;
    conf.channel = static_cast<uint8_t>(values.Get(VELK_CMD_CHANNEL)[0]);
    conf.auth = values.Code(VELK_CMD_AUTHENTICATION);
    conf.encryption = values.Code(VELK_CMD_ENCRYPTION);
    conf.wep_default = static_cast<uint8_t>(values.Get(VELK_CMD_WEP_DEFAULT_KEY)[0]);
    for (size_t i = 0; i < kWepKeys.size(); ++i) {
        SWepKey& key = conf.wep_key[i];
        key.length = Put(std::string(values.Text(kWepKeys[i]).size(), kBlank), key.key);
    }
    conf.psk_length = Put(std::string(values.Text(VELK_CMD_PSK).size(), kBlank), conf.psk);
    return conf;
}

// Reads the 12 hex digits of a hardware address.
void PutAddress(const std::string& digits, uint8_t (&field)[6]) {
    for (size_t i = 0; i < std::size(field) && i * 2 + 1 < digits.size(); ++i) {
        field[i] = static_cast<uint8_t>(strtoul(digits.substr(i * 2, 2).c_str(), nullptr, 16));
    }
}

SMsgState StateOf(const Values& values) {
    SMsgState state{};
    std::string product(kRevision);
    (void)Put(product.append(values.Text(VELK_CMD_HARDWARE_VERSION)), state.product);
    (void)Put(values.Text(VELK_CMD_SOFTWARE_VERSION), state.software_version);
    state.region = values.Code(VELK_CMD_REGION);
    state.dot11_phy = values.Code(VELK_CMD_STANDARD);
    PutAddress(std::string(values.Text(VELK_CMD_ACCESS_POINT)), state.access_point);
    memcpy(state.rate, values.Get(VELK_CMD_RATE).data(), sizeof(state.rate));
    memcpy(state.signal, values.Get(VELK_CMD_SIGNAL).data(), sizeof(state.signal));
    return state;
}

template <typename Record>
std::string BytesOf(const Record& record) {
    std::string bytes(sizeof(record), '\0');
    memcpy(bytes.data(), &record, sizeof(record));
    return bytes;
}

}  // namespace

std::vector<std::string> KeysOf(const WirelessValues& values) {
    std::vector<std::string> keys{std::string(Values(values).Text(VELK_CMD_PSK))};
    for (const uint32_t id : kWepKeys) {
        keys.emplace_back(Values(values).Text(id));
    }
    std::erase(keys, "");
    return keys;
}

std::string WirelessRecord(const WirelessValues& known) {
    const Values values(known);
    if (!values.Has(VELK_CMD_SSID)) {
        return {};
    }
    std::string bytes = BytesOf(ConfigurationOf(values));
    if (values.Has(VELK_CMD_STANDARD) || values.Has(VELK_CMD_REGION)) {
        bytes.append(BytesOf(StateOf(values)));
    }
    return BlankedBytes(std::move(bytes), KeysOf(known));
}

}  // namespace velkctl
