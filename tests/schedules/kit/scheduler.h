// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scheduler.h - lets callers run one at a time, and changes between them at chosen system calls.
#ifndef TESTS_SCHEDULES_KIT_SCHEDULER_H_
#define TESTS_SCHEDULES_KIT_SCHEDULER_H_

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "schedules/kit/shared_call.h"

namespace schedules {

enum class Role {
    kCaller,   // the run ends when all of these have ended
    kService,  // serves the others and is killed at the end
    kEvent     // happens at once, in the process of the scheduler, and then the timers expire
};

struct Caller {
    std::string name;
    std::function<int()> work;  // in a process of its own, except for an event
    Role role = Role::kCaller;
};

// A caller that goes on at a decision. Without a choice, the one that runs goes on; if it waits or
// has ended, the first one that can go on.
struct Choice {
    size_t decision;
    std::string caller;
    bool operator==(const Choice&) const = default;
};
using Schedule = std::vector<Choice>;

// "3=second 17=first"
std::string TextOf(const Schedule& schedule);
Schedule ParseSchedule(const std::string& text);

// A moment at which another caller could go on: before a shared call, or when the running one waits
// or has ended.
struct Decision {
    std::string caller;  // the one that went on
    std::vector<std::string> others{};
    SharedCall call{};  // the next one of the running caller; empty if it cannot go on
    // Grows with each change of the running caller.
    size_t turn = 0;
    // True if the running caller goes on with its call.
    bool makes_call = false;
    // True if there is no running caller, or it has ended. Any other choice than the usual one is a
    // preemption.
    bool is_free = false;
};

// A run of the callers with one schedule.
struct Course {
    std::vector<Decision> decisions;
    std::map<std::string, int> results;  // without callers that were killed
    std::set<std::string> left;          // callers that were killed at the end
    std::string problem;                 // the callers wait for each other, or never end
    std::vector<std::string> calls;      // all shared calls, "first: rename PATH"
};

// Runs all callers to their end. A process that calls setsid(2) becomes a caller of its own, named
// "guardian". The sleeps of all callers end when another one has made a shared call, or nobody else
// can go on.
Course Run(const std::vector<Caller>& callers, const Schedule& schedule);

// True if callers can be stepped on this processor.
bool CanStep();

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_SCHEDULER_H_
