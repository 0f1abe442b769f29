// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// waiting_entry.h - the change that confirm, extend and revert are about.
#ifndef VELKCTL_VERBS_WAITING_ENTRY_H_
#define VELKCTL_VERBS_WAITING_ENTRY_H_

#include <optional>
#include <string>
#include <string_view>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The change that was named, or the newest one, under the lock between runs of velkctl.
class WaitingEntry {
  public:
    // Waits a moment for other runs; more with --wait. Reports why there is no such change, or why
    // this user may not decide about it.
    WaitingEntry(std::string_view verb, std::string id, int wait_seconds, Report& report);

    // True if there is a change that needs a confirmation, or needed one.
    bool is_found() const { return stored_.has_value(); }
    // The exit status if there is none.
    ExitStatus status() const { return status_; }
    const StoredEntry& stored() const { return *stored_; }

  private:
    ExitStatus Find();
    ExitStatus Locked() const;
    std::optional<StoredEntry> Read() const;
    ExitStatus Complain(const Problem& problem) const;

    const std::string verb_;
    const std::string id_;
    Report& report_;
    const JournalLock lock_;
    std::optional<StoredEntry> stored_;
    const ExitStatus status_;
};

// Returns "change k7f2 of 14:02".
std::string NameOfChange(const JournalEntry& entry);

// Reports that other changes are refused because one waits. Returns false if none does. `message`
// is the failure: "set: nothing was changed".
bool RefuseWhileOneWaits(std::string_view message, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_WAITING_ENTRY_H_
