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
    // The system calls in their order. False for one that can change nothing but the process that
    // makes it: after a cut, the device looks the same before and behind such a call.
    std::vector<bool> calls_that_change;
    // What `work` returned, from -128 to 127; nothing when it did not come to its end.
    std::optional<int> result;
    bool was_cut = false;
    // That were running when it was cut; which of two made the next call is a matter of chance.
    std::set<std::string> programs;
};

// Runs `work` in a child process with the child's own descriptors and memory. With `cut_at`, the
// child and every process that came of it are killed right before the system call with that number
// (from 1), as a power cut would; 0 lets them run to their end. Throws std::system_error where
// processes cannot be followed.
TracedRun RunTraced(const std::function<int()>& work, size_t cut_at = 0);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_TRACER_H_
