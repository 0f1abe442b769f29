// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// timers.h - the time since the start of the device, which passes only when a test lets it.
#ifndef TESTS_SCHEDULES_KIT_TIMERS_H_
#define TESTS_SCHEDULES_KIT_TIMERS_H_

#include <sys/types.h>

#include "schedules/kit/shared_call.h"

namespace schedules {

// Adds to the time since the start, for this process and all that it has forked or will fork. Other
// programs do not notice it.
void PassSeconds(int seconds);

// The same for the time that a process is about to sleep, on the other clock of intervals.
void PassSleep(pid_t process, const Entry& sleep);

// Makes all timers of a process expire now.
void ExpireTimers(pid_t process);

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_TIMERS_H_
