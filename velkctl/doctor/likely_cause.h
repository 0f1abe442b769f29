// likely_cause.h - why a setting does not hold what was set.
#ifndef VELKCTL_DOCTOR_LIKELY_CAUSE_H_
#define VELKCTL_DOCTOR_LIKELY_CAUSE_H_

#include <string>
#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Looks for what keeps a value that the library has just reported as set from being held, or from
// being read back. The likeliest comes first: a problem before a warning, a line of a file before
// all else. When everything about the setting looks right, what is left is where it is held: a line
// of an address, or the wireless daemon, which is not asked.
Findings CausesOf(const Setting& setting);

// Adds a likely cause to a problem: its description, remedy and place.
void AddLikelyCause(Problem& problem, const Finding& cause);

// Returns ProblemOf() the setting. A plain failure gets its likely cause, if one is found.
Problem ProblemWithCause(std::string message, const Setting& setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_LIKELY_CAUSE_H_
