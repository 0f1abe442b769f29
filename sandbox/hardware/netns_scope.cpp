// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// netns_scope.cpp - enters a network namespace until the end of a scope.
#include "sandbox/hardware/netns_scope.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

velk::UniqueFd CurrentNetwork() {
    velk::UniqueFd network(open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC));
    if (network.get() == -1) {
        Fail("cannot open the network namespace", errno);
    }
    return network;
}

void Enter(const velk::UniqueFd& network) {
    if (setns(network.get(), CLONE_NEWNET) == -1) {
        Fail("cannot enter a network namespace", errno);
    }
}

}  // namespace

velk::UniqueFd MakeNetwork() {
    const velk::UniqueFd home = CurrentNetwork();
    if (unshare(CLONE_NEWNET) == -1) {
        Fail("cannot make a network namespace", errno);
    }
    velk::UniqueFd made = CurrentNetwork();
    Enter(home);
    return made;
}

NetnsScope::NetnsScope(const velk::UniqueFd& network) : home_(CurrentNetwork()) {
    Enter(network);
}

NetnsScope::~NetnsScope() {
    // The process must not continue in the wrong network namespace.
    if (setns(home_.get(), CLONE_NEWNET) == -1) {
        _exit(EXIT_FAILURE);
    }
}

}  // namespace sandbox
