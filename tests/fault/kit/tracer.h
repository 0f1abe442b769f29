// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tracer.h - follows a process and all it starts, system call by system call, and may end them all.
#ifndef TESTS_FAULT_KIT_TRACER_H_
#define TESTS_FAULT_KIT_TRACER_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <sys/types.h>

namespace fault {

// A write that fails: from which one of the run on, and how.
struct WriteFault {
    size_t number;  // from 1
    int error;      // errno
    bool all_later = false;
};

// A moment between two system calls of a run. Calls that can change only their own process are not
// the same in each run: the sanitizers' allocator and a busy machine add some. So a moment counts
// those that can change more, and the others only from the last of these on.
struct Moment {
    size_t changes;    // the calls so far that can change more than their own process
    size_t calls = 0;  // the calls since then; if a run has fewer, its next change follows
};

struct TracedRun {
    // The system calls in their order. False for a call that can change only its own process: a cut
    // before it and one after it leave the same device.
    std::vector<bool> calls_that_change;

    // The moments right before each call.
    std::vector<Moment> Moments() const;
    // The first of them, and the first after each change: the device differs at each.
    std::vector<Moment> MomentsThatDiffer() const;

    // The value that `work` returned, from -128 to 127; no value if it did not end.
    std::optional<int> result;
    bool was_cut = false;
    // The calls that put data, a new file or a new name on a disk, in their order: "write PATH".
    std::vector<std::string> writes;
    bool has_fault_struck = false;
    // The programs that ran at the moment of the cut. If there are two, chance decides which of
    // them makes the next call.
    std::set<std::string> programs;
};

enum class Traced {
    kAll,       // the process and all it starts
    kFirstOnly  // the processes that it starts go on after a cut
};

// Runs `work` in a child process with the child's own descriptors and memory. With `cut_at`, the
// child and all its descendants are killed at that moment, as a power cut would; otherwise they run
// to their end. Throws std::system_error if processes cannot be traced.
TracedRun RunTraced(const std::function<int()>& work, std::optional<Moment> cut_at = {},
                    Traced traced = Traced::kAll);

// A system call that has just returned. The process waits until its watcher returns.
struct ReturnedCall {
    pid_t process;
    long number;
    uint64_t first_argument;
    bool has_failed;
};
using CallWatcher = std::function<void(const ReturnedCall& call)>;

// The same without a cut. The watcher sees each call that can change more than its own process.
TracedRun RunWatched(const std::function<int()>& work, const CallWatcher& watcher);

// Runs `work` in the same way. The write with the fault's number fails and does nothing, if a disk
// can fail it with that error: a full one fails no fsync(2) of a file that has its blocks.
TracedRun RunFailing(const std::function<int()>& work, const WriteFault& fault,
                     Traced traced = Traced::kAll);

// Returns "after 3 changes and 2 other calls".
std::string TextOf(const Moment& moment);

// True if calls can be made to fail on this processor.
bool CanFailWrites();

// True if a disk can fail the call, one of TracedRun::writes, with this error.
bool CanFailWith(const std::string& write, int error);

// The same, but nothing is killed: at this moment, the child waits while `act` runs.
TracedRun RunTracedBeside(const std::function<int()>& work, std::optional<Moment> at,
                          const std::function<void()>& act);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_TRACER_H_
