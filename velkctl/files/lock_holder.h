// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock_holder.h - the process that holds the lock between programs that change settings.
#ifndef VELKCTL_FILES_LOCK_HOLDER_H_
#define VELKCTL_FILES_LOCK_HOLDER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "lib/base/paths.h"

namespace velkctl {

struct LockHolder {
    int process;
    std::string name;
    long seconds;  // since the process started; the kernel does not record when it took the lock
    std::vector<int> others;  // processes with the same descriptor of the lock file
};

// Returns the process that holds a lock, that of the library if none is given; nothing if none, or
// if it is unknown, as with a process of another PID namespace. If the process that took the lock
// has ended, finds one that it started and that has the descriptor; without root's rights, only
// among the user's own.
std::optional<LockHolder> FindLockHolder(const char* path = velk::kLockFile);

// Returns "process 1234 (name, 5 minutes old)", or "process 12 (sh, 3 seconds old, shared with
// 13)".
std::string DescribeHolder(const LockHolder& holder);

// Returns a text about the process that holds the lock; empty if none is found. If nothing but the
// number of an ended process is known, says that a child of it holds the lock.
std::string DescribeLockHolder(const char* path = velk::kLockFile);

// Returns the process that /proc/locks names as the holder of the flock(2) on this file.
std::optional<int> FlockHolder(std::string_view locks, dev_t device, ino_t inode);

// Returns the age of a process, from its /proc/PID/stat and /proc/uptime.
std::optional<long> SecondsRunning(std::string_view stat, std::string_view uptime,
                                   long ticks_per_second);

}  // namespace velkctl

#endif  // VELKCTL_FILES_LOCK_HOLDER_H_
