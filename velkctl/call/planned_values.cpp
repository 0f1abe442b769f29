// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// planned_values.cpp - the values of the device after the changes of one call.
#include "velkctl/call/planned_values.h"

#include "velkctl/call/answer.h"

namespace velkctl {
namespace {

std::optional<Data> Present(const Setting& setting, const Device& device) {
    const Answer answer = device.Get(setting);
    return answer.ok() ? std::optional(answer.data) : std::nullopt;
}

}  // namespace

std::optional<Data> PlannedValues::Planned(const Setting& setting) const {
    for (const SettingChange& change : changes_) {
        if (IsSameSetting(change.setting, setting)) {
            return change.value;
        }
    }
    return std::nullopt;
}

// True if the device answers with the addresses of one method and will have the other.
bool PlannedValues::ShowsOtherMethod(const Setting& setting) const {
    const std::optional<Setting> method = FindSetting(VELK_CMD_IP_METHOD, setting.interface);
    const std::optional<Data> planned = method ? Planned(*method) : std::nullopt;
    return planned && planned != Present(*method, device_);
}

std::optional<Data> PlannedValues::Get(const Setting& setting) const {
    if (const std::optional<Data> planned = Planned(setting)) {
        return planned;
    }
    if (IsAddressCommand(setting.row->id) && ShowsOtherMethod(setting)) {
        return std::nullopt;
    }
    return Present(setting, device_);
}

std::optional<Data> PlannedValues::Get(uint32_t id, std::string_view interface) const {
    const std::optional<Setting> setting = FindSetting(id, interface);
    return setting ? Get(*setting) : std::nullopt;
}

bool PlannedValues::HasStaticMethod(std::string_view interface) const {
    const std::optional<Data> method = Get(VELK_CMD_IP_METHOD, interface);
    return method && IsStaticMethod(*method);
}

}  // namespace velkctl
