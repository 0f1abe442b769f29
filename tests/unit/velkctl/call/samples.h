// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// samples.h - commands, and the edit copies they leave.
#ifndef TESTS_UNIT_VELKCTL_CALL_SAMPLES_H_
#define TESTS_UNIT_VELKCTL_CALL_SAMPLES_H_

#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "velk.h"
#include "velkctl/call/command.h"

namespace testkit {

inline constexpr velkctl::Command kChange{VELK_SET, VELK_CMD_IP_METHOD, "eth0"};
inline constexpr velkctl::Command kRestart{VELK_RESTART, VELK_CMD_RESTART, "eth0"};

// Makes an edit copy with the mode that the library gives it.
inline void WriteCopy(const std::string& path, std::string_view text) {
    WriteFile(path, text);
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
}

}  // namespace testkit

#endif  // TESTS_UNIT_VELKCTL_CALL_SAMPLES_H_
