// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// revert.h - takes back a change that is not finished or not confirmed.
#ifndef VELKCTL_CHANGES_REVERT_H_
#define VELKCTL_CHANGES_REVERT_H_

#include <string>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

struct RevertOptions {
    // Before networking: no DHCP client or daemon runs yet, and nothing is restarted.
    bool at_boot = false;
    bool restarts = true;    // also if nothing has to be put back
    std::string cause{};     // kept in the journal; empty: the one that is there
    bool is_untold = false;  // the next run says that the change was put back
};

struct RevertResult {
    PutBackResult put_back{};
    // The status of the last restart that failed. kLocked: the change is still open.
    ExitStatus restart = ExitStatus::kDone;

    bool is_locked() const { return put_back.is_locked || restart == ExitStatus::kLocked; }
};

// Ends the DHCP clients of the change, puts its files and values back, and restarts its interfaces.
// Closes the entry only then: a revert that was killed is repeated. Reports failures. Each step can
// be repeated. The caller holds the JournalLock.
RevertResult Revert(OpenChange& change, const RevertOptions& options, const TimeLimits& limits,
                    const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_REVERT_H_
