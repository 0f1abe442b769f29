// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// affected_settings.cpp - the settings that a finding is about.
#include "velkctl/settings/affected_settings.h"

#include <algorithm>

#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

template <typename Condition>
AffectedSettings SettingsWhere(Condition condition) {
    AffectedSettings settings = Settings();
    std::erase_if(settings, [&](const Setting& setting) { return !condition(setting); });
    return settings;
}

bool IsOn(const Setting& setting, std::string_view interface) {
    return interface.empty() || setting.interface == interface;
}

bool IsOfDaemon(const Setting& setting) {
    return setting.row->held_in.holder == Holder::kDaemon;
}

}  // namespace

bool Includes(const AffectedSettings& affected, const Setting& setting) {
    return std::ranges::any_of(affected, [&](const Setting& other) {
        return other.row->id == setting.row->id && other.interface == setting.interface;
    });
}

std::vector<std::string> NamesOf(const AffectedSettings& affected) {
    std::vector<std::string> names;
    for (const Setting& setting :
         SettingsWhere([&](const Setting& known) { return Includes(affected, known); })) {
        names.push_back(setting.name());
    }
    return names;
}

AffectedSettings UnionOf(AffectedSettings all, const AffectedSettings& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

AffectedSettings SettingsOf(uint32_t id, std::string_view interface) {
    return SettingsWhere(
        [&](const Setting& setting) { return setting.row->id == id && IsOn(setting, interface); });
}

AffectedSettings SettingsHeldIn(std::string_view file, std::string_view interface) {
    return SettingsWhere([&](const Setting& setting) {
        const char* holder = setting.row->held_in.line.file;
        return holder != nullptr && holder == file && IsOn(setting, interface);
    });
}

AffectedSettings SettingsWithKey(std::string_view key) {
    return SettingsWhere(
        [&](const Setting& setting) { return setting.row->held_in.line.key == key; });
}

AffectedSettings SettingsBeside(const Setting& setting) {
    const char* file = setting.row->held_in.second_line.file;
    return file == nullptr ? AffectedSettings() : SettingsHeldIn(file);
}

AffectedSettings SettingsChanging(std::string_view file) {
    AffectedSettings settings;
    for (const SettingLine& line : LinesOfSettings(file)) {
        settings.push_back(line.setting);
    }
    return settings;
}

AffectedSettings SettingsReadWith(std::string_view tool) {
    return SettingsWhere([&](const Setting& setting) {
        const std::string_view own = setting.row->held_in.tool;
        return tool.empty() ? !own.empty() : own == tool;
    });
}

AffectedSettings WirelessSettings() {
    return SettingsWhere(IsOfDaemon);
}

AffectedSettings WirelessConfiguration() {
    return SettingsWhere(
        [](const Setting& setting) { return IsOfDaemon(setting) && setting.can_set(); });
}

// The kernel knows no hardware address of an interface without an adapter.
AffectedSettings AdapterFacts() {
    return SettingsWhere([](const Setting& setting) {
        const bool is_of_kernel = setting.row->held_in.holder == Holder::kKernel;
        return (IsOfDaemon(setting) && !setting.can_set()) ||
               (is_of_kernel && setting.interface == VELK_WIRELESS_INTERFACE);
    });
}

AffectedSettings EditedSettings() {
    AffectedSettings settings;
    for (const DeviceFile& file : DeviceFiles()) {
        if (file.change == Change::kByEdit) {
            settings = UnionOf(std::move(settings), file.holds);
        }
    }
    return settings;
}

}  // namespace velkctl
