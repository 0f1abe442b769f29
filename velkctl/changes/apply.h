// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply.h - carries out a plan as one change, which is put back if a step fails.
#ifndef VELKCTL_CHANGES_APPLY_H_
#define VELKCTL_CHANGES_APPLY_H_

#include <optional>
#include <vector>

#include "velkctl/call/stop_signals.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/change_record.h"
#include "velkctl/changes/restarts.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

struct ApplyResult {
    ExitStatus status = ExitStatus::kDone;
    std::vector<DoneRestart> restarts{};  // those of the change, not of its taking back
    bool is_taken_back = false;           // a step failed, and all or a part was put back
};

// Ends the DHCP client of an interface that leaves DHCP and is restarted. Makes the changes in
// their order, reads each back, writes the files to disk, restarts the interfaces, compares all
// values once more, and runs the command that confirms the change, if any. After a failure, which
// it reports, and after a signal it puts the old state back and restarts the interfaces again,
// however long that takes. The plan has no problems. The caller ends velkctl by a signal that
// `signals` holds back.
ApplyResult Apply(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits,
                  const StopSignals& signals, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_APPLY_H_
