// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_patterns.h - words that select several settings.
#ifndef VELKCTL_SETTINGS_SETTING_PATTERNS_H_
#define VELKCTL_SETTINGS_SETTING_PATTERNS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/settings/catalogue.h"

namespace velkctl {

// True for an interface, which selects all of its settings, and for a pattern of the shell such as
// eth*.dns.
bool IsPattern(std::string_view word);

// Returns the settings that an interface or a pattern selects, in the order of the catalogue.
std::vector<Setting> SettingsMatching(const std::string& pattern);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_SETTING_PATTERNS_H_
