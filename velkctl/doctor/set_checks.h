// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_checks.h - checks a value before it is set. No check finds a problem in values or files that
// cannot be read.
#ifndef VELKCTL_DOCTOR_SET_CHECKS_H_
#define VELKCTL_DOCTOR_SET_CHECKS_H_

#include <optional>

#include "velkctl/call/device.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// The way out of a conflict.
enum class WayOut {
    kOfSet,    // other sets before it, or --force
    kOfApply,  // other values in the same change: apply and import have no --force
};

// Returns the conflict of a value with the configuration of the interface as it will be: an address
// that no host of its network can have, or that the gateway has; a gateway outside the network; one
// address that both interfaces are given at once. `planned` has the changed value.
std::optional<Problem> NetworkProblem(const SettingChange& change, const PlannedValues& planned,
                                      WayOut way_out = WayOut::kOfSet);

// The library replaces the first occurrence of a text on a line. Returns the reason why this set,
// or the next one, would replace another text: the name of a time server is also a part of the
// command before it, or administrator or location has a word of the SNMP agent's file in it.
// Compares the new value and the present ones.
std::optional<Problem> TextConflict(const SettingChange& change, const Device& device,
                                    WayOut way_out = WayOut::kOfSet);

// Returns the conflict of clearing the WEP key in use, which the library refuses.
std::optional<Problem> ClearedKeyProblem(const SettingChange& change, const PlannedValues& planned);

// Returns a note about a pre-shared key that the library accepts and WPA does not. The note does
// not repeat the key.
std::optional<Problem> UnusualKeyNote(const SettingChange& change);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_SET_CHECKS_H_
