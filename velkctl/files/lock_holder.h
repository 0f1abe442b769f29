// lock_holder.h - which process keeps others from changing settings.
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
    long seconds;  // since it was started; since when it holds the lock, the kernel does not tell
};

// The process that holds the library's lock; nothing when there is none, and when it cannot be
// told, as with one of another PID namespace.
std::optional<LockHolder> FindLockHolder();

// "process 1234 (name, 5 minutes old)"
std::string Words(const LockHolder& holder);

// Who holds the lock, also when that one has ended and a program it started holds it on; empty when
// nobody does.
std::string LockHolderInWords();

// The process that /proc/locks names as the holder of the flock(2) on this file.
std::optional<int> FlockHolder(std::string_view locks, dev_t device, ino_t inode);

// How long a process has been running, from its /proc/PID/stat and /proc/uptime.
std::optional<long> SecondsRunning(std::string_view stat, std::string_view uptime,
                                   long ticks_per_second);

}  // namespace velkctl

#endif  // VELKCTL_FILES_LOCK_HOLDER_H_
