// verification.h - whether the device holds what was set.
#ifndef VELKCTL_VERIFICATION_H_
#define VELKCTL_VERIFICATION_H_

#include "velkctl/catalogue.h"
#include "velkctl/data.h"
#include "velkctl/exit_status.h"

namespace velkctl {

// Reads a setting back that the library has just reported as set, and complains when the device
// does not hold the value, saying what it holds instead and the likely cause. The library cannot
// tell: it does not learn whether its shell lines worked, and an edit that finds no line to change
// is no failure to it. A setting that cannot be read is taken as held.
ExitStatus VerifySet(const Setting& setting, const Data& wanted);

}  // namespace velkctl

#endif  // VELKCTL_VERIFICATION_H_
