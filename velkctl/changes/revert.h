// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// revert.h - takes back a change that is not finished or not confirmed.
#ifndef VELKCTL_CHANGES_REVERT_H_
#define VELKCTL_CHANGES_REVERT_H_

#include <string>

#include "velkctl/call/device.h"
#include "velkctl/changes/restarts.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/report/report.h"

namespace velkctl {

struct RevertOptions {
    // Revert() finds the later changes itself. At boot nothing is restarted.
    PutBackOptions put_back{};
    bool restarts = true;  // also if nothing has to be put back
    // False: the change stays open if an interface does not come up, for another try.
    bool closes_if_down = true;
    std::string cause{};     // kept in the journal; empty: the one that is there
    bool is_untold = false;  // the next run says that the change was put back
};

struct RevertResult {
    PutBackResult put_back{};
    RestartsResult restarts{};

    // True if another program is changing settings: the change is still open.
    bool is_locked() const { return put_back.is_locked || restarts.is_locked; }
};

// Ends the DHCP clients of the change, puts its files and values back, and restarts its interfaces;
// if nothing could be put back, only those that it has taken down. Closes the entry only then: a
// revert that was killed is repeated. Reports failures. Each step can be repeated. The caller holds
// the JournalLock.
RevertResult Revert(OpenChange& change, const RevertOptions& options, int wait_seconds,
                    const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_REVERT_H_
