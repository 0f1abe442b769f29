// bound_child.h - a child process that ends with its parent.
#ifndef SANDBOX_PROCESS_BOUND_CHILD_H_
#define SANDBOX_PROCESS_BOUND_CHILD_H_

#include <sys/types.h>

namespace sandbox {

// fork(2), or what does as that does, for a child that the kernel ends when this process ends,
// whatever way that does. The child may be in another PID namespace. Throws Failure.
pid_t ForkBoundChild(pid_t (*fork_child)());

// Waits for the end of a child and returns what a shell would report.
int WaitForChild(pid_t child);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_BOUND_CHILD_H_
