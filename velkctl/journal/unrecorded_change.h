// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unrecorded_change.h - a set or restart that leaves no entry in the journal.
#ifndef VELKCTL_JOURNAL_UNRECORDED_CHANGE_H_
#define VELKCTL_JOURNAL_UNRECORDED_CHANGE_H_

#include <string_view>

#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// During its lifetime no other run applies, undoes or recovers. A device must remain
// reachable while its journal cannot be used: the change then goes on.
class UnrecordedChange {
  public:
    // Waits like a plain set. `verb` begins the message about another run.
    UnrecordedChange(std::string_view verb, int wait_seconds, Report& report);

    // True if another run holds the journal, or a change waits for its confirmation. It is
    // reported, and no change may be made.
    bool is_refused() const { return refusal_ != ExitStatus::kDone; }
    ExitStatus refusal() const { return refusal_; }

  private:
    const JournalLock lock_;
    ExitStatus refusal_ = ExitStatus::kDone;
};

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_UNRECORDED_CHANGE_H_
