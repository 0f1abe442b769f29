// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_guard.h - the start of the process that takes a change back if it is not confirmed.
#ifndef VELKCTL_CHANGES_CHANGE_GUARD_H_
#define VELKCTL_CHANGES_CHANGE_GUARD_H_

#include <optional>
#include <string>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/report/report.h"

namespace velkctl {

class ChangeGuard {
  public:
    // Starts the process, and returns when it is ready. The entry is in the journal. Returns the
    // problem if there will be none: then nothing may be changed.
    virtual std::optional<Problem> Start(const std::string& id, GuardianFacts& facts) = 0;

  protected:
    ~ChangeGuard() = default;
};

// The rules by which an apply is confirmed.
struct Confirmation {
    ChangeGuard* guard = nullptr;  // nothing: the change needs no confirmation
    int window_seconds = 0;
    int step_seconds = 0;   // the longest time of all steps
    bool is_asked = false;  // a command has to confirm it, not a person
};

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_CHANGE_GUARD_H_
