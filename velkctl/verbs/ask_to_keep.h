// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ask_to_keep.h - asks a person at the terminal if a change is to be kept.
#ifndef VELKCTL_VERBS_ASK_TO_KEEP_H_
#define VELKCTL_VERBS_ASK_TO_KEEP_H_

#include "velkctl/call/time_limits.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// True if standard input is a terminal, and the question can be shown.
bool CanAskForKey();

// Asks about the last change. Waits for y, which confirms it, or n, which puts it back, or until
// somebody else has decided. Without an answer, or after the
// end of the terminal, the change waits on. Returns the exit status of confirm or revert.
ExitStatus AskToKeep(const TimeLimits& limits, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_ASK_TO_KEEP_H_
