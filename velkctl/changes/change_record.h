// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_record.h - the state before a change, to put it back.
#ifndef VELKCTL_CHANGES_CHANGE_RECORD_H_
#define VELKCTL_CHANGES_CHANGE_RECORD_H_

#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The longest time to wait for another program before the old state is put back. A change that is
// half made is worse than a long wait.
inline constexpr int kTakeBackSeconds = 120;

// The reason why a change may not begin.
struct BeginFailure {
    Problem problem;
    ExitStatus status = ExitStatus::kFailed;
};

// Begin() comes first. A function that returns a problem has done nothing.
class ChangeRecord {
  public:
    // Keeps the files that the steps touch and the old values of their settings.
    virtual std::optional<BeginFailure> Begin(const ChangeSet& steps,
                                              const std::vector<std::string>& restarts,
                                              const Device& device) = 0;
    // Keeps the files as they are after one more step.
    virtual void StepMade() = 0;
    // Writes the touched files to disk. Fails if one is as before that should have changed.
    virtual std::optional<Problem> Flush() = 0;
    // The change is done.
    virtual std::optional<Problem> Finish() = 0;
    // Puts the files and values back, and reports each that could not be. Returns kFailed if all
    // are back.
    virtual ExitStatus TakeBack(const Device& device, Report& report) = 0;
    // The change is taken back, and its interfaces are restarted: all are up as before, or not.
    virtual void FinishTakeBack(bool are_interfaces_up) = 0;

  protected:
    ~ChangeRecord() = default;
};

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_CHANGE_RECORD_H_
