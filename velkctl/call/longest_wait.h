// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// longest_wait.h - the longest time that commands take, and their reason for waiting.
#ifndef VELKCTL_CALL_LONGEST_WAIT_H_
#define VELKCTL_CALL_LONGEST_WAIT_H_

#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

struct LongestWait {
    int seconds = 0;             // 0: unknown
    std::string_view awaited{};  // empty: only files and the tools that copy them
};

// Returns the longest time that a command takes in any state of the device. Tools that usually
// answer at once are not counted.
LongestWait LongestWaitOf(const Command& command);

// The same for reading a setting.
LongestWait LongestWaitOf(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_CALL_LONGEST_WAIT_H_
