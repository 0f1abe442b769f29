// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exit_status.cpp - exit statuses of the sandbox.
#include "sandbox/process/exit_status.h"

#include <sys/wait.h>

namespace sandbox {

int ExitStatusOf(int wait_status) {
    return WIFSIGNALED(wait_status) ? kSignalBase + WTERMSIG(wait_status)
                                    : WEXITSTATUS(wait_status);
}

}  // namespace sandbox
