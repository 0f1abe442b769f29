// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// selected_settings.h - the settings that the words of a verb select for reading.
#ifndef VELKCTL_VERBS_SELECTED_SETTINGS_H_
#define VELKCTL_VERBS_SELECTED_SETTINGS_H_

#include <vector>

#include "velkctl/cli/verbs.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Returns the settings of the words of a verb, in their order: names, and interfaces and patterns,
// which select the settings that can be read. Reports every word that selects none, and then
// returns nothing. `verb` begins these messages.
std::vector<Setting> SelectReadable(std::string_view verb, const Invocation& invocation,
                                    Report& report);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SELECTED_SETTINGS_H_
