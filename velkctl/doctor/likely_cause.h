// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// likely_cause.h - the reason why a setting does not hold the value that was set.
#ifndef VELKCTL_DOCTOR_LIKELY_CAUSE_H_
#define VELKCTL_DOCTOR_LIKELY_CAUSE_H_

#include <optional>
#include <string>
#include <string_view>

#include "velkctl/call/answer.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Returns the findings that keep a value, reported as set by the library, from being held or read
// back. The likeliest comes first: a problem before a warning, a line of a file before other
// findings. If nothing is found, returns where the value is held: the line of an address, or the
// wireless daemon, which is not asked. `value` is the value that was set, for the fix.
Findings LikelyCauses(const Setting& setting, std::string_view value = {});

// Returns the findings that keep a value from being set. Leaves out the wireless daemon's other
// value: another program may have set it.
Findings Hindrances(const Setting& setting, std::string_view value);

// Adds a likely cause to a problem: its description, remedy and place.
void AddLikelyCause(Problem& problem, const Finding& cause);

// Returns the likely cause of a get that failed plainly; nothing if none is found.
std::optional<Finding> LikelyCauseOfGet(const Setting& setting, const Answer& answer);

// Returns the exit status after the answer: that of a missing adapter also if the wireless daemon
// does not run because of it, which is a plain failure to the library.
ExitStatus StatusWithCause(const Setting& setting, const Answer& answer);

// Return ProblemOf() the setting for a failed get or set. A plain failure gets its likely cause, if
// one is found. No get is blamed on a finding that hinders only a set, and no set on one that
// hinders only a get.
Problem ProblemOfGet(std::string message, const Setting& setting, const Answer& answer);
Problem ProblemOfSet(std::string message, const Setting& setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_LIKELY_CAUSE_H_
