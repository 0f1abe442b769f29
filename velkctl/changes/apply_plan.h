// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply_plan.h - the steps that give the device a set of values.
#ifndef VELKCTL_CHANGES_APPLY_PLAN_H_
#define VELKCTL_CHANGES_APPLY_PLAN_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// The interfaces to restart after the sets.
struct RestartChoice {
    bool is_automatic = true;               // those of settings that take effect with a restart
    std::vector<std::string> interfaces{};  // otherwise
};

// A setting and the values before and after a change.
struct PlannedChange {
    SettingChange change;
    std::optional<Data> old_value{};  // nothing if it cannot be read
};

struct ApplyPlan {
    std::vector<PlannedChange> changes{};  // the differences, in the order of the sets
    ChangeSet beside{};                    // values the device has and a change may switch
    std::vector<Setting> skipped{};        // addresses that an interface gets from its lease
    std::vector<std::string> restarts{};
    std::string confirm_if{};  // a command that confirms the change with status 0; empty: none
    int confirm_seconds = 0;   // its longest time
    std::vector<Problem> notes{};
    std::vector<Problem> problems{};        // with any of them, nothing is changed
    ExitStatus status = ExitStatus::kDone;  // kInvalid or that of an unreadable setting
};

// Sorts the changes: method, address, netmask, gateway, apipa, dns, then the rest. The method
// switches blocks of files that later ones change. Keys that are cleared come last: the library
// does not clear the WEP key in use.
void SortSteps(std::vector<PlannedChange>& changes);

// True if the plan gives the interface the method, VELK_METHOD_STATIC or VELK_METHOD_DHCP.
bool SetsMethod(const ApplyPlan& plan, std::string_view interface, int method);

// Compares the values with those of the device. `wanted` has each setting once.
ApplyPlan MakePlan(const ChangeSet& wanted, const RestartChoice& choice, const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_APPLY_PLAN_H_
