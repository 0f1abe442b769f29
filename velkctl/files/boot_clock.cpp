// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// boot_clock.cpp - the start of the running system and the time since then.
#include "velkctl/files/boot_clock.h"

#include <ctime>

#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr char kBootIdFile[] = "/proc/sys/kernel/random/boot_id";
constexpr int64_t kMilliseconds = 1000;
constexpr int64_t kNanosecondsOfOne = 1'000'000;

}  // namespace

std::string RunningBootId() {
    return std::string(Trimmed(ReadTextFile(kBootIdFile).bytes));
}

int64_t MillisecondsSinceBoot() {
    timespec now{};
    (void)clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec * kMilliseconds + now.tv_nsec / kNanosecondsOfOne;
}

}  // namespace velkctl
