// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unrecorded_change.cpp - a set or restart that leaves no entry in the journal.
#include "velkctl/journal/unrecorded_change.h"

#include <algorithm>
#include <cerrno>
#include <string>

#include "velkctl/journal/journal_problem.h"

namespace velkctl {

UnrecordedChange::UnrecordedChange(std::string_view verb, int wait_seconds, Report& report)
    : lock_(JournalLock::Use::kShared, std::max(wait_seconds, kLeastJournalWait)),
      is_refused_(lock_.error() == EWOULDBLOCK) {
    if (is_refused_) {
        report.Complain(JournalProblem(std::string(verb) + ": nothing was changed", EWOULDBLOCK));
    }
}

}  // namespace velkctl
