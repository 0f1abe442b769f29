// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_problem.h - the reason why the journal cannot be used, for people.
#ifndef VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_
#define VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_

#include <string>

#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Returns the problem for an error of JournalLock, EntryFile or OpenChange.
Problem JournalProblem(std::string message, int error);

// Returns the problem of an earlier change that was interrupted.
Problem InterruptedProblem(const std::string& id);

// Returns the exit status of a run that needs the journal.
ExitStatus StatusOfJournal(int error);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_
