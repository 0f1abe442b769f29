// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// inherited_lock.cpp - lends the inter-process lock to the tools that replace a file.
#include "lib/base/inherited_lock.h"

#include <atomic>

#include <fcntl.h>

namespace velk {
namespace {

// The descriptor of the one lock that the process holds, or -1.
std::atomic<int> lent_lock = -1;
std::atomic<bool> is_left_to_tools = false;

}  // namespace

void LendLock(int fd) {
    is_left_to_tools = false;
    lent_lock = fd;
}

bool EndLending() {
    lent_lock = -1;
    return is_left_to_tools;
}

InheritedLock::InheritedLock() : fd_(lent_lock) {
    if (fd_ != -1) {
        (void)fcntl(fd_, F_SETFD, 0);
    }
}

void InheritedLock::LeaveToTools() {
    is_left_to_tools = fd_ != -1;
}

InheritedLock::~InheritedLock() {
    if (fd_ != -1) {
        (void)fcntl(fd_, F_SETFD, FD_CLOEXEC);
    }
}

}  // namespace velk
