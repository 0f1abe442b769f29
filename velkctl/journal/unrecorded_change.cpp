// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unrecorded_change.cpp - a set or restart that leaves no entry in the journal.
#include "velkctl/journal/unrecorded_change.h"

#include <cerrno>
#include <optional>
#include <string>

#include "lib/base/paths.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"

namespace velkctl {

UnrecordedChange::UnrecordedChange(std::string_view verb, int wait_seconds, Report& report)
    : lock_(AwaitJournalLock(JournalLock::Use::kShared, wait_seconds, kLeastJournalWait, report)) {
    const std::string message = std::string(verb) + ": nothing was changed";
    if (const std::optional<Problem> problem = FindWaitingProblem(message)) {
        report.Complain(*problem);
        refusal_ = ExitStatus::kWaits;
    } else if (lock_.error() == EWOULDBLOCK) {
        report.Complain(LockedProblem(message, velk::kJournalLock));
        refusal_ = ExitStatus::kLocked;
    }
}

}  // namespace velkctl
