// read_back.h - whether the device holds what was set.
#ifndef VELKCTL_DOCTOR_READ_BACK_H_
#define VELKCTL_DOCTOR_READ_BACK_H_

#include <optional>

#include "velkctl/call/device.h"
#include "velkctl/call/files_before.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data.h"

namespace velkctl {

struct Verification {
    std::optional<bool> held;  // nothing when that was not to be found out
    ExitStatus status;         // how velkctl ends
};

// Reads a setting back that the library has just reported as set. When the device does not hold the
// value, complains, saying what it holds instead and the likely cause. The library cannot tell: it
// does not learn whether its shell lines worked, and an edit that finds no line to change is no
// failure to it. Where nothing is to be read, in settings that can only be set and addresses behind
// a lease, what keeps them from being set is looked for; there is a note when nothing does. The
// complaint also names the files that have lost their text since `before`.
Verification VerifySet(const Setting& setting, const Data& wanted, const FilesBefore& before,
                       const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_READ_BACK_H_
