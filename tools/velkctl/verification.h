// verification.h - whether the device holds what was set.
#ifndef VELKCTL_VERIFICATION_H_
#define VELKCTL_VERIFICATION_H_

#include <optional>

#include "velkctl/catalogue.h"
#include "velkctl/data.h"
#include "velkctl/patience.h"
#include "velkctl/report.h"

namespace velkctl {

// Reads a setting back that the library has just reported as set: true when the device holds the
// value. When it does not, complains, saying what it holds instead and the likely cause. The
// library cannot tell: it does not learn whether its shell lines worked, and an edit that finds no
// line to change is no failure to it. Nothing for a setting that cannot be read, and, with a note,
// for an address behind a lease.
std::optional<bool> VerifySet(const Setting& setting, const Data& wanted, const Patience& patience,
                              Report& report);

}  // namespace velkctl

#endif  // VELKCTL_VERIFICATION_H_
