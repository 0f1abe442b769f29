// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// affected_settings.h - the settings that a finding is about.
#ifndef VELKCTL_SETTINGS_AFFECTED_SETTINGS_H_
#define VELKCTL_SETTINGS_AFFECTED_SETTINGS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/settings/catalogue.h"

namespace velkctl {

using AffectedSettings = std::vector<Setting>;

bool Includes(const AffectedSettings& affected, const Setting& setting);

// Returns the full names of the settings in the order of the catalogue: "eth0.method".
std::vector<std::string> NamesOf(const AffectedSettings& affected);

AffectedSettings UnionOf(AffectedSettings all, const AffectedSettings& more);

// Returns the setting with this id on the interface; on each of its interfaces if that is empty.
AffectedSettings SettingsOf(uint32_t id, std::string_view interface = "");

// Returns the settings held in the file; of one interface, unless that is empty.
AffectedSettings SettingsHeldIn(std::string_view file, std::string_view interface = "");
// Returns the settings held in a line with this key.
AffectedSettings SettingsWithKey(std::string_view key);

// Returns the settings in the second file that a set of this one changes.
AffectedSettings SettingsBeside(const Setting& setting);

// Returns the settings that change the file when set.
AffectedSettings SettingsChanging(std::string_view file);

// Returns the settings that are read with the tool; with any tool if it is empty.
AffectedSettings SettingsReadWith(std::string_view tool = "");

// Returns the settings that the wireless daemon answers for.
AffectedSettings WirelessSettings();
// Returns the settings of the daemon's configuration, with or without an adapter.
AffectedSettings WirelessConfiguration();
// Returns the settings that are refused while no adapter is attached.
AffectedSettings AdapterFacts();

// Returns the settings in files that are changed through an edit copy.
AffectedSettings EditedSettings();

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_AFFECTED_SETTINGS_H_
