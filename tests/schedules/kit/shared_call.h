// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shared_call.h - the system calls by which callers meet: on the device's files, locks and sockets.
#ifndef TESTS_SCHEDULES_KIT_SHARED_CALL_H_
#define TESTS_SCHEDULES_KIT_SHARED_CALL_H_

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace schedules {

// A system call that is about to be made.
struct Entry {
    long number = -1;
    uint64_t arguments[6]{};
};

// A file, a folder, the lock of a file, or the kernel's shared semaphores.
struct Touch {
    std::string object;
    bool writes = false;
    bool operator==(const Touch&) const = default;
};

struct SharedCall {
    std::string name;  // "rename /var/libvelk/libvelk"
    std::vector<Touch> touches;
    bool operator==(const SharedCall&) const = default;
};

// Returns the call that a stopped process is about to make. It touches nothing if no other caller
// can notice it or be noticed by it: calls on other files, or in a mount namespace of its own.
SharedCall ReadSharedCall(pid_t process, const Entry& entry);

// The calls that the scheduler has to see: those above, those that wait, and setsid(2).
const std::vector<long>& WatchedCalls();

bool IsSleep(long call);

// False if the call cannot end the wait of another process.
bool MayWake(const Entry& entry);

// True if a call that is not shared neither waits for another process nor ends a wait.
bool ConcernsNobody(pid_t process, const Entry& entry);

// True if the call may wait for another process.
bool MayWait(pid_t process, const Entry& entry);

// Returns the result of the call if its time is over; 1 if it has none.
long ResultOfTimeout(const Entry& entry);

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_SHARED_CALL_H_
