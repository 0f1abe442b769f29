// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wait.h - waits whole seconds.
#ifndef VELK_BASE_WAIT_H_
#define VELK_BASE_WAIT_H_

namespace velk {

// Sleeps the whole time by the monotonic clock, normally with one sleep(3) call. If a signal of the
// host program interrupts it, the rest is waited for until the deadline.
void WaitSeconds(unsigned seconds);

}  // namespace velk

#endif  // VELK_BASE_WAIT_H_
