// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_key_check.h - checks a wireless key against the configuration and the standard.
#ifndef VELKCTL_DOCTOR_WIRELESS_KEY_CHECK_H_
#define VELKCTL_DOCTOR_WIRELESS_KEY_CHECK_H_

#include <optional>

#include "velkctl/call/planned_values.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// Returns the conflict of clearing the WEP key in use, which the library refuses. Nothing if there
// is no conflict or if it is unknown.
std::optional<Problem> ClearedKeyProblem(const SettingChange& change, const PlannedValues& planned);

// Returns the doubt about a pre-shared key that the library takes and WPA does not; nothing if
// none. Does not repeat the key.
std::optional<Problem> UnusualKeyNote(const SettingChange& change);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_WIRELESS_KEY_CHECK_H_
