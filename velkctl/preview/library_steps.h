// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_steps.h - the steps of the library outside its own memory, as text or JSON.
#ifndef VELKCTL_PREVIEW_LIBRARY_STEPS_H_
#define VELKCTL_PREVIEW_LIBRARY_STEPS_H_

#include <string>
#include <vector>

#include "velkctl/preview/event_log.h"
#include "velkctl/report/report.h"

namespace velkctl {

// A step for people and programs.
struct LibraryStep {
    std::string kind;  // "shell", "not_run", "log", "wait", "message", "not_sent", "again"
    // A line, "30 s", the meaning of a message, or "the last 2 steps, 59 times". Secrets are
    // masked.
    std::string text;

    bool operator==(const LibraryStep&) const = default;
};

// Returns the steps of the commands of changes; a get is left out. Steps that are often repeated
// are listed once.
std::vector<LibraryStep> StepsIn(const std::vector<Event>& events);

// The sum of the waits, in seconds.
long SecondsWaited(const std::vector<Event>& events);

std::string TextOf(const std::vector<LibraryStep>& steps);

// [{"kind": ..., "text": ...}]
Json InJson(const std::vector<LibraryStep>& steps);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_LIBRARY_STEPS_H_
