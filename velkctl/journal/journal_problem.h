// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_problem.h - the reason why the journal cannot be used, for people.
#ifndef VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_
#define VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_

#include <string>

#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Returns the problem for an error of JournalLock, EntryFile or OpenChange.
Problem JournalProblem(std::string message, int error);

// The same for a lock that another program holds, with the process that holds it.
Problem LockedProblem(std::string message, const char* lock);

// Says that a lock is awaited, and who holds it. Does nothing if no time is left to wait or the
// lock is free.
void NoteWait(const char* lock, int seconds, Report& report);

// Notes whom the lock of the journal waits for, and takes it. Waits at least the second time, which
// is not noted.
JournalLock AwaitJournalLock(JournalLock::Use use, int wait_seconds, int least_seconds,
                             Report& report);

// Returns the problem of an earlier change that was interrupted.
Problem InterruptedProblem(const std::string& id);

// Returns the exit status of a run that needs the journal.
ExitStatus StatusOfJournal(int error);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_JOURNAL_PROBLEM_H_
