// likely_cause.h - the reason why a setting does not hold the value that was set.
#ifndef VELKCTL_DOCTOR_LIKELY_CAUSE_H_
#define VELKCTL_DOCTOR_LIKELY_CAUSE_H_

#include <string>
#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Returns the findings that keep a value, reported as set by the library, from being held or read
// back. The likeliest comes first: a problem before a warning, a line of a file before other
// findings. If nothing is found, returns where the value is held: the line of an address, or the
// wireless daemon, which is not asked.
Findings LikelyCauses(const Setting& setting);

// Adds a likely cause to a problem: its description, remedy and place.
void AddLikelyCause(Problem& problem, const Finding& cause);

// Returns ProblemOf() the setting. A plain failure gets its likely cause, if one is found.
Problem ProblemWithCause(std::string message, const Setting& setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_LIKELY_CAUSE_H_
