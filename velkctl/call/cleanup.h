// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// cleanup.h - removes the files of a call that was ended early.
#ifndef VELKCTL_CALL_CLEANUP_H_
#define VELKCTL_CALL_CLEANUP_H_

#include "velkctl/call/command.h"

namespace velkctl {

// Removes the files that a killed library call could not remove itself: the reply socket and the
// semaphore of a query, the output of a tool, the edit copies of the command. velkctl removes no
// other files. Keeps files that another program may be using. Keeps the edit copy of a file that
// was cut: it holds the lost text.
//
// `tools_ended` is true if no program of the call is running.
void CleanUp(const Command& command, bool tools_ended);

}  // namespace velkctl

#endif  // VELKCTL_CALL_CLEANUP_H_
