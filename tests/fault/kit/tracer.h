// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tracer.h - follows a process and all it starts, system call by system call, and may end them all.
#ifndef TESTS_FAULT_KIT_TRACER_H_
#define TESTS_FAULT_KIT_TRACER_H_

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fault {

struct TracedRun {
    // The system calls in their order. False for a call that can change only its own process: a cut
    // before it and one after it leave the same device.
    std::vector<bool> calls_that_change;
    // The value that `work` returned, from -128 to 127; no value if it did not end.
    std::optional<int> result;
    bool was_cut = false;
    // The programs that ran at the moment of the cut. If there are two, chance decides which of
    // them makes the next call.
    std::set<std::string> programs;
};

enum class Traced {
    kAll,       // the process and all it starts
    kFirstOnly  // the processes that it starts go on after a cut
};

// Runs `work` in a child process with the child's own descriptors and memory. With `cut_at`, the
// child and all its descendants are killed right before the system call with that number (from 1),
// as a power cut would; 0 lets them run to their end. Throws std::system_error if processes cannot
// be traced.
TracedRun RunTraced(const std::function<int()>& work, size_t cut_at = 0,
                    Traced traced = Traced::kAll);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_TRACER_H_
