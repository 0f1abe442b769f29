// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bound_child.cpp - a child process that ends with its parent.
#include "sandbox/process/bound_child.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

// A parent that ended before prctl(2) sends no signal. Its end of the pipe is then closed.
void EndWithParent(const velk::UniqueFd& parent) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd end = {parent.get(), POLLIN, 0};
    if (poll(&end, 1, 0) != 0) {
        _exit(kSandboxFailed);
    }
}

}  // namespace

pid_t ForkBoundChild(pid_t (*fork_child)()) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    const pid_t child = fork_child();
    if (child == -1) {
        Fail("cannot start a process", errno);
    }
    if (child == 0) {
        (void)write_end.Reset();
        EndWithParent(read_end);
    } else {
        (void)write_end.Release();  // stays open until this process ends
    }
    return child;
}

int WaitForChild(pid_t child) {
    int status;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            Fail("cannot wait for a child", errno);
        }
    }
    return ExitStatusOf(status);
}

}  // namespace sandbox
