// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_key_check.cpp - checks a wireless key against the configuration and the standard.
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/kinds_of_settings.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/hex.h"

namespace velkctl {
namespace {

// The lengths of a WPA key: of a passphrase, and of a key in hex digits.
constexpr size_t kShortestPassphrase = 8;
constexpr size_t kHexKey = 64;

bool IsWepKey(uint32_t id) {
    return id >= VELK_CMD_WEP_KEY_1 && id <= VELK_CMD_WEP_KEY_4;
}

std::optional<int> FirstByte(const std::optional<Data>& data) {
    return data ? std::optional((*data)[0]) : std::nullopt;
}

bool IsInUse(const Setting& key, const PlannedValues& planned) {
    const int number = static_cast<int>(key.row->id - VELK_CMD_WEP_KEY_1) + 1;
    return FirstByte(planned.Get(VELK_CMD_ENCRYPTION, key.interface)) == kWep &&
           FirstByte(planned.Get(VELK_CMD_WEP_DEFAULT_KEY, key.interface)) == number;
}

}  // namespace

std::optional<Problem> ClearedKeyProblem(const SettingChange& change,
                                         const PlannedValues& planned) {
    const Setting& setting = change.setting;
    if (!IsWepKey(setting.row->id) || change.value[0] != '\0' || !IsInUse(setting, planned)) {
        return std::nullopt;
    }
    const std::string interface(setting.interface);
    return Problem{
        .message = setting.name() + ": the key in use cannot be cleared",
        .setting = setting.name(),
        .detail = interface + ".encryption is wep, and " + interface + ".wep-default-key names it",
        .remedy = "set " + interface + ".wep-default-key or " + interface + ".encryption first"};
}

std::optional<Problem> UnusualKeyNote(const SettingChange& change) {
    const Setting& setting = change.setting;
    const std::string_view key(change.value.data(),
                               strnlen(change.value.data(), change.value.size()));
    const bool is_usual = key.size() == kHexKey ? IsHex(key) : key.size() >= kShortestPassphrase;
    if (setting.row->id != VELK_CMD_PSK || key.empty() || is_usual) {
        return std::nullopt;
    }
    const std::string size = std::to_string(key.size()) + (key.size() == 1 ? " byte" : " bytes");
    return Problem{.message = setting.name() + ": the key has " + size,
                   .setting = setting.name(),
                   .detail = "WPA takes a passphrase of 8 to 63 characters or 64 hex digits"};
}

}  // namespace velkctl
