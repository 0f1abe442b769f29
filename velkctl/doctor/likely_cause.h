// likely_cause.h - the reason why a setting does not hold the value that was set.
#ifndef VELKCTL_DOCTOR_LIKELY_CAUSE_H_
#define VELKCTL_DOCTOR_LIKELY_CAUSE_H_

#include <string>
#include <string_view>

#include "velkctl/call/answer.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Returns the findings that keep a value, reported as set by the library, from being held or read
// back. The likeliest comes first: a problem before a warning, a line of a file before other
// findings. If nothing is found, returns where the value is held: the line of an address, or the
// wireless daemon, which is not asked.
Findings LikelyCauses(const Setting& setting);

// Returns "; likely cause: " and the first of them, as in "/etc/network/interfaces:12: the stanza
// is the last one and has no gateway line; fix: add ..."; empty if there is none.
std::string LikelyCauseText(const Findings& causes);

// Returns DescribeFailure() of the answer. For a plain failure, which has no reason in its result
// code, adds the likely cause.
std::string DescribeFailureAndCause(std::string_view failure, const Setting& setting,
                                    const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_LIKELY_CAUSE_H_
