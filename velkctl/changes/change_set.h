// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_set.h - changes that are checked together before the first of them is made.
#ifndef VELKCTL_CHANGES_CHANGE_SET_H_
#define VELKCTL_CHANGES_CHANGE_SET_H_

#include <optional>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// Every setting occurs at most once.
using ChangeSet = std::vector<SettingChange>;

// Sorts the changes: those of the device, then those of eth0 and eth1, each in the order of the
// catalogue. It has the method before the addresses, which are read back by method. Keys that are
// cleared come last: the library does not clear the WEP key in use.
void SortChanges(ChangeSet& changes);

// Returns the conflicts of the values with each other, with the other settings as they will be, and
// with the files. A setting that has one of the known problems is not checked.
std::vector<Problem> FindConflicts(const ChangeSet& changes, const std::vector<Problem>& known,
                                   const Device& device, WayOut way_out = WayOut::kOfSet);

struct ChangeOptions {
    bool read_back = true;
    bool forced = false;  // the values were not checked
};

// The result of one change.
struct MadeChange {
    bool is_set = false;         // the library reported success
    std::optional<bool> held{};  // nothing if that was not or could not be checked
    ExitStatus status = ExitStatus::kDone;

    // False if the device does not hold the value that the library reported as set.
    bool has_effect() const { return is_set && held.value_or(true); }
};

// Makes the changes in their order and reads each back, if wanted. Stops at the first failure, and
// reports it with the changes that were made before it and those that were not. Returns the results
// up to there.
std::vector<MadeChange> MakeChanges(const ChangeSet& changes, ChangeOptions options,
                                    const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_CHANGE_SET_H_
