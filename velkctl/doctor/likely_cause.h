// likely_cause.h - why a setting does not hold what was set.
#ifndef VELKCTL_DOCTOR_LIKELY_CAUSE_H_
#define VELKCTL_DOCTOR_LIKELY_CAUSE_H_

#include <string>
#include <string_view>

#include "velkctl/call/answer.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Looks for what keeps a value that the library has just reported as set from being held, or from
// being read back. The likeliest comes first: a problem before a warning, a line of a file before
// all else. When everything about the setting looks right, what is left is where it is held: a line
// of an address, or the wireless daemon, which is not asked.
Findings CausesOf(const Setting& setting);

// "/etc/network/interfaces:12: the stanza is the last one and has no gateway line; mend: add ..."
std::string CauseInWords(const Finding& cause);

// DescribeFailure(), with the likely cause of a failure that has no name of its own.
std::string DescribeFailure(std::string_view what, const Setting& setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_LIKELY_CAUSE_H_
