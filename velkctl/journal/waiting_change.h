// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// waiting_change.h - the change that must be confirmed; while it waits, no other is made.
#ifndef VELKCTL_JOURNAL_WAITING_CHANGE_H_
#define VELKCTL_JOURNAL_WAITING_CHANGE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The name of a guardian's command, before the id of its change.
inline constexpr std::string_view kGuardianName = "velkctl-guardian";

// The reasons why such a change is taken back.
inline constexpr std::string_view kCauseDeadline = "it was not confirmed in time";
inline constexpr std::string_view kCauseInterrupted = "it was interrupted";
inline constexpr std::string_view kCauseFailure = "a step of it has failed";
inline constexpr std::string_view kCauseRequest = "'velkctl revert' has asked for it";
inline constexpr std::string_view kCauseBoot = "the device was started again";

// Returns the newest change if it needs a confirmation and is being made, waits, or is being taken
// back; nothing if there is none. One that is stuck does not count: the device must stay usable.
std::optional<StoredEntry> FindUnconfirmed();

// True if its time is over, or the device was started again.
bool IsOverdue(const JournalEntry& entry);

// True while a process runs that will take the change back.
bool HasGuardian(const JournalEntry& entry);

// Returns the time until the deadline, at least 0.
int64_t SecondsLeft(const JournalEntry& entry);

// Returns the reason why no other change may be made. `message` is the failure: "set: nothing was
// changed".
Problem ProblemOfUnconfirmed(const StoredEntry& stored, std::string message);

// Returns the same if there is such a change.
std::optional<Problem> FindWaitingProblem(std::string message);

// Returns "anna"; "user 1000" if /etc/passwd has no such user.
std::string UserName(uid_t user);

// Returns "14:02", in the time zone of the device.
std::string ClockTime(int64_t seconds);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_WAITING_CHANGE_H_
