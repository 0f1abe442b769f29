// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/call/pause.h"

#include <chrono>

#include <gtest/gtest.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

TEST(Pause, LastsAtLeastItsTime) {
    const Clock::time_point start = Clock::now();
    velkctl::Pause(milliseconds(20));
    EXPECT_GE(Clock::now() - start, milliseconds(20));
}

TEST(Pause, MayLastSeconds) {
    const Clock::time_point start = Clock::now();
    velkctl::Pause(milliseconds(1010));
    EXPECT_GE(Clock::now() - start, milliseconds(1010));
}

}  // namespace
