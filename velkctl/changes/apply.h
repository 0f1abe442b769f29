// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply.h - carries out a plan as one change, which is put back if a step fails.
#ifndef VELKCTL_CHANGES_APPLY_H_
#define VELKCTL_CHANGES_APPLY_H_

#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/change_record.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

struct DoneRestart {
    std::string interface;
    int seconds;
    Json state;
};

struct ApplyResult {
    ExitStatus status = ExitStatus::kDone;
    std::vector<DoneRestart> restarts{};  // those of the change, not of its taking back
    bool is_taken_back = false;           // a step failed, and all or a part was put back
};

// Ends the DHCP client of an interface that leaves DHCP and is restarted. Makes the changes in
// their order, reads each back, writes the files to disk, restarts the interfaces, compares all
// values once more, and runs the command that confirms the change, if any. After a failure, which
// it reports, it puts the old state back and restarts the interfaces again. The plan has no
// problems.
ApplyResult Apply(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits,
                  const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_APPLY_H_
