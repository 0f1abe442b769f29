// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_properties.h - helpers of the tests that edit files made at random.
#ifndef TESTS_SUPPORT_EDIT_PROPERTIES_H_
#define TESTS_SUPPORT_EDIT_PROPERTIES_H_

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/dice.h"

namespace testkit {

inline constexpr int kRounds = 300;

using Lines = std::vector<std::string>;

inline Lines Split(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

inline std::vector<FileIdentity> IdentitiesOf(std::initializer_list<const char*> paths) {
    std::vector<FileIdentity> identities;
    for (const char* path : paths) {
        identities.push_back(IdentityOf(path));
    }
    return identities;
}

// Gives each file another owner, if the test runs as root, and a random mode.
inline void ChangeOwnerAndMode(std::initializer_list<const char*> paths, Dice& dice) {
    for (const char* path : paths) {
        (void)!chown(path, 12, 34);
        EXPECT_EQ(chmod(path, static_cast<mode_t>(0600 + dice.Below(64))), 0);
    }
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_EDIT_PROPERTIES_H_
