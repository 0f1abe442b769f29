// lock_holder.h - the process that holds the lock between programs that change settings.
#ifndef VELKCTL_FILES_LOCK_HOLDER_H_
#define VELKCTL_FILES_LOCK_HOLDER_H_

#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace velkctl {

struct LockHolder {
    int process;
    std::string name;
    long seconds;  // since the process started; the kernel does not record when it took the lock
};

// Returns the process that holds the library's lock; nothing if none, or if it is unknown, as with
// a process of another PID namespace.
std::optional<LockHolder> FindLockHolder();

// Returns "process 1234 (name, 5 minutes old)".
std::string DescribeHolder(const LockHolder& holder);

// Returns a text about the process that holds the lock, also if it has ended and a program that it
// started holds the lock on; empty if none does.
std::string DescribeLockHolder();

// Returns the process that /proc/locks names as the holder of the flock(2) on this file.
std::optional<int> FlockHolder(std::string_view locks, dev_t device, ino_t inode);

// Returns the age of a process, from its /proc/PID/stat and /proc/uptime.
std::optional<long> SecondsRunning(std::string_view stat, std::string_view uptime,
                                   long ticks_per_second);

}  // namespace velkctl

#endif  // VELKCTL_FILES_LOCK_HOLDER_H_
