// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// calls.h - calls of the library without a fixture, for processes of their own.
#ifndef TESTS_WORLD_CALLS_H_
#define TESTS_WORLD_CALLS_H_

#include <string>

#include <unistd.h>

#include "support/device_test.h"

namespace world {

inline int Set(uint32_t id, const std::string& interface, const std::string& data) {
    const _velk_request request = testkit::MakeRequest(VELK_SET, id, interface, data);
    _velk_request response;
    return execute_velk_command(&request, &response);
}

inline int SetAddress(const std::string& address) {
    return Set(VELK_CMD_IP_ADDRESS, "eth0", address);
}

// Tools of a killed caller may still copy. Their end frees the lock, within a minute on any
// machine.
inline void WaitForFreeLock() {
    for (int i = 0; i < 60000 && !testkit::IsLockFree(); ++i) {
        usleep(1000);
    }
    EXPECT_TRUE(testkit::IsLockFree());
}

}  // namespace world

#endif  // TESTS_WORLD_CALLS_H_
