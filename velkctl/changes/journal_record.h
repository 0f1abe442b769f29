// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_record.h - the state before a change, kept in the journal.
#ifndef VELKCTL_CHANGES_JOURNAL_RECORD_H_
#define VELKCTL_CHANGES_JOURNAL_RECORD_H_

#include <optional>

#include "velkctl/changes/change_record.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"

namespace velkctl {

// During its lifetime no other run changes settings. `wait_seconds` is the longest time to wait for
// such runs, and for other programs.
class JournalRecord final : public ChangeRecord {
  public:
    explicit JournalRecord(int wait_seconds)
        : wait_seconds_(wait_seconds), lock_(JournalLock::Use::kAlone, wait_seconds) {}

    std::optional<BeginFailure> Begin(const ChangeSet& steps,
                                      const std::vector<std::string>& restarts,
                                      const Device& device) override;
    void StepMade() override { (void)change_.RecordFiles(); }
    std::optional<Problem> Flush() override;
    std::optional<Problem> Finish() override;
    ExitStatus TakeBack(const Device& device, Report& report) override;

  private:
    int BeginEntry(const ChangePlan& plan, const Device& device);

    const int wait_seconds_;
    const JournalLock lock_;
    OpenChange change_;
};

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_JOURNAL_RECORD_H_
