// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ready_semaphore.cpp - the semaphore by which a program signals that it waits for a reply.
#include "sandbox/wland/ready_semaphore.h"

#include <cerrno>
#include <ctime>

#include "lib/base/paths.h"

namespace wland {
namespace {

timespec In(std::chrono::milliseconds limit) {
    constexpr long kSecond = 1000 * 1000 * 1000;
    timespec time{};
    (void)clock_gettime(CLOCK_REALTIME, &time);
    time.tv_sec += limit.count() / 1000;
    time.tv_nsec += limit.count() % 1000 * 1000 * 1000;
    time.tv_sec += time.tv_nsec / kSecond;
    time.tv_nsec %= kSecond;
    return time;
}

}  // namespace

ReadySemaphore::ReadySemaphore() : handle_(sem_open(velk::kSemaphoreName, 0)), error_(errno) {
}

ReadySemaphore::~ReadySemaphore() {
    if (exists()) {
        (void)sem_close(handle_);
    }
}

bool ReadySemaphore::Take(std::chrono::milliseconds limit) const {
    const timespec deadline = In(limit);
    return sem_timedwait(handle_, &deadline) == 0;
}

}  // namespace wland
