// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_record.h - the state before a change, kept in the journal.
#ifndef VELKCTL_CHANGES_JOURNAL_RECORD_H_
#define VELKCTL_CHANGES_JOURNAL_RECORD_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/changes/change_guard.h"
#include "velkctl/changes/change_record.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// During its lifetime no other run that keeps an entry changes settings. Waits for other programs
// within the limits. A trial run finds the files that the change will make; if none is possible,
// that is noted, and the files are recorded after each step only. A change that needs a
// confirmation gets a guardian before its first step, and waits after its last one.
class JournalRecord final : public ChangeRecord {
  public:
    // Waits for the lock.
    JournalRecord(const TimeLimits& limits, Report& report, Confirmation confirmation = {})
        : JournalRecord(JournalLock(JournalLock::Use::kAlone, limits.wait_seconds), limits, report,
                        confirmation) {}
    JournalRecord(JournalLock lock, const TimeLimits& limits, Report& report,
                  Confirmation confirmation = {})
        : lock_(std::move(lock)), limits_(limits), report_(report), confirmation_(confirmation) {}

    std::optional<BeginFailure> Begin(const ChangeSet& steps,
                                      const std::vector<std::string>& restarts,
                                      const Device& device) override;
    void StepMade() override;
    std::optional<Problem> Flush() override;
    std::optional<Problem> Finish() override;
    ExitStatus TakeBack(const Device& device, Report& report) override;
    void FinishTakeBack(bool are_interfaces_up) override;

    // Returns an entry without an id if the change has none, or none any more.
    JournalEntry entry() const { return change_.is_begun() ? change_.entry() : JournalEntry(); }

  private:
    void Expect();
    std::optional<Problem> FindUnwritten() const;
    std::optional<BeginFailure> Guard();
    EntryState LastState() const;

    const JournalLock lock_;
    const TimeLimits limits_;
    Report& report_;
    const Confirmation confirmation_;
    size_t made_ = 0;  // steps
    OpenChange change_;
    std::vector<std::string> expected_;  // the files that the change will alter
    PutBackResult taken_back_;
};

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_JOURNAL_RECORD_H_
