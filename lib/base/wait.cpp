// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wait.cpp - waits whole seconds.
#include "lib/base/wait.h"

#include <cerrno>
#include <ctime>

#include <unistd.h>

namespace velk {
namespace {

// Sleeps the full time unless a signal handler of the host program runs. The result of sleep(3)
// drops the remaining fraction of a second, so errno is checked too.
bool SleepsUndisturbed(unsigned seconds) {
    errno = 0;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): sends no SIGALRM on Linux
    return sleep(seconds) == 0 && errno != EINTR;
}

}  // namespace

void WaitSeconds(unsigned seconds) {
    timespec deadline{};
    (void)clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += seconds;
    if (SleepsUndisturbed(seconds)) {
        return;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

}  // namespace velk
