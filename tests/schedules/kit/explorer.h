// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// explorer.h - runs callers with every schedule that has up to a number of preemptions.
#ifndef TESTS_SCHEDULES_KIT_EXPLORER_H_
#define TESTS_SCHEDULES_KIT_EXPLORER_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "schedules/kit/scheduler.h"

namespace schedules {

// Callers that meet on a device made for each run.
class Meeting {
  public:
    virtual ~Meeting() = default;
    virtual std::vector<Caller> Prepare() = 0;
    // Returns the mistake that the run has left; empty if there is none.
    virtual std::string Check(const Course& course) = 0;
};

struct Bounds {
    int preemptions = 2;
    size_t stride = 1;  // leaves out schedules with preemptions, but each with this distance
};

struct Failure {
    Schedule schedule;
    std::string text;
    Course course;
};

struct Findings {
    std::vector<size_t> runs;  // by the number of preemptions
    size_t points = 0;         // before calls of the first run that another caller may notice
    // The first difference between two runs up to the choice in which they differ; must be empty.
    std::string strayed;
    std::optional<Failure> failure;  // the first one; it ends the exploration
};

// A caller is preempted before each call on an object that two callers use and one of them changes.
// Changes that have no call on such an object between them have the same effect, and one of them is
// made. The objects are learned from the runs themselves.
Findings Explore(Meeting& meeting, const Bounds& bounds);

// Runs one schedule. Returns the failure, or nothing.
std::optional<Failure> Replay(Meeting& meeting, const Schedule& schedule);

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_EXPLORER_H_
