// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stop_signals.cpp - the signals that end the daemon.
#include "sandbox/wland/stop_signals.h"

#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/signalfd.h>

#include "sandbox/process/failure.h"

namespace wland {

StopSignals::StopSignals() {
    sigset_t signals;
    (void)sigemptyset(&signals);
    (void)sigaddset(&signals, SIGTERM);
    (void)sigaddset(&signals, SIGINT);
    (void)sigprocmask(SIG_BLOCK, &signals, nullptr);
    fd_ = velk::UniqueFd(signalfd(-1, &signals, SFD_CLOEXEC));
    if (fd_.get() == -1) {
        sandbox::Fail("cannot watch for signals", errno);
    }
}

bool StopSignals::HasArrived() const {
    pollfd pending{fd_.get(), POLLIN, 0};
    return poll(&pending, 1, 0) == 1;
}

}  // namespace wland
