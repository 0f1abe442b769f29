// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exit_status.h - exit statuses of the sandbox.
#ifndef SANDBOX_PROCESS_EXIT_STATUS_H_
#define SANDBOX_PROCESS_EXIT_STATUS_H_

namespace sandbox {

// The sandbox's own exit statuses. Every other status is that of the command.
enum ExitStatus {
    kUsageError = 2,
    kSandboxFailed = 125,
    kCannotExecute = 126,
    kNotFound = 127,
    kSignalBase = 128  // plus the number of the signal that ended the command
};

// Converts a status of wait(2) to the exit status that a shell reports.
int ExitStatusOf(int wait_status);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_EXIT_STATUS_H_
