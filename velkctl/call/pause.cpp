// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pause.cpp - waits a short time.
#include "velkctl/call/pause.h"

#include <ctime>

namespace velkctl {

void Pause(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const auto nanoseconds = std::chrono::nanoseconds(time - seconds);
    const timespec pause{static_cast<time_t>(seconds.count()),
                         static_cast<long>(nanoseconds.count())};
    (void)nanosleep(&pause, nullptr);
}

}  // namespace velkctl
