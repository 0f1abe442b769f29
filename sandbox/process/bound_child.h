// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bound_child.h - a child process that ends with its parent.
#ifndef SANDBOX_PROCESS_BOUND_CHILD_H_
#define SANDBOX_PROCESS_BOUND_CHILD_H_

#include <sys/types.h>

namespace sandbox {

// Forks a child that the kernel ends with this process. `fork_child` is fork(2) or a function with
// the same result. The child may be in another PID namespace. Throws Failure.
pid_t ForkBoundChild(pid_t (*fork_child)());

// Waits for the end of a child and returns its exit status, see ExitStatusOf().
int WaitForChild(pid_t child);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_BOUND_CHILD_H_
