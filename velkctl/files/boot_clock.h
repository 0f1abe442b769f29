// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// boot_clock.h - the start of the running system and the time since then.
#ifndef VELKCTL_FILES_BOOT_CLOCK_H_
#define VELKCTL_FILES_BOOT_CLOCK_H_

#include <cstdint>
#include <string>

namespace velkctl {

// Returns the id that the kernel has given itself at its start; empty if unknown.
std::string RunningBootId();

// Counts also the time in which the device is suspended. Nobody can set this clock.
int64_t MillisecondsSinceBoot();

}  // namespace velkctl

#endif  // VELKCTL_FILES_BOOT_CLOCK_H_
