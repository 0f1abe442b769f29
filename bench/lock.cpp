// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock.cpp - compares taking and releasing the lock with open, flock and close.
#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "lib/base/paths.h"
#include "velk.h"

namespace bench {

void AddLock() {
    const auto ours = [] { VkLibUnLock(VkLibLock()); };
    const auto by_hand = [] { LockByHand(velk::kLockFile); };
    Compare({.name = "lock", .ours = Timed(ours, 50), .other = Timed(by_hand, 50)});
}

}  // namespace bench
