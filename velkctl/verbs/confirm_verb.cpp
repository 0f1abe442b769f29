// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// confirm_verb.cpp - the verbs that keep a change that waits, or prolong its time.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/cli/time_options.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int64_t kMilliseconds = 1000;

std::string IdIn(const Invocation& invocation, size_t at) {
    return invocation.words.size() > at ? invocation.words[at] : "";
}

// Returns the state of a change that does not wait any more: "has been put back".
std::string_view EndOf(const StoredEntry& stored) {
    switch (stored.decoded.entry.state) {
        case EntryState::kReverted:
            return " has been put back";
        case EntryState::kStuck:
            return " has been put back in part";
        case EntryState::kConfirmed:
            return " is already confirmed";
        case EntryState::kWaiting:
        case EntryState::kReverting:
            return " is being put back";
        default:
            return " was interrupted";
    }
}

// A change that is overdue counts as one that is being taken back: its guardian does that next.
ExitStatus TooLate(std::string_view verb, const StoredEntry& stored, Report& report) {
    const JournalEntry& entry = stored.decoded.entry;
    Problem problem{std::string(verb) + ": " + NameOfChange(entry) + std::string(EndOf(stored))};
    problem.detail = entry.cause.empty() && entry.state == EntryState::kWaiting
                         ? std::string(kCauseDeadline)
                         : entry.cause;
    report.Complain(problem);
    return ExitStatus::kFailed;
}

void ReportState(const JournalEntry& entry, Report& report) {
    report.Member("id", entry.id);
    report.Member("state", NameOf(entry.state));
}

ExitStatus Confirm(const StoredEntry& stored, Report& report) {
    OpenChange change(stored);
    if (const int error = change.Advance(EntryState::kConfirmed); error != 0) {
        report.Complain(JournalProblem("confirm: the change still waits", error));
        return ExitStatus::kFailed;
    }
    ReportState(change.entry(), report);
    report.Inform(NameOfChange(change.entry()) + " is confirmed\n");
    return ExitStatus::kDone;
}

ExitStatus Extend(const StoredEntry& stored, int seconds, Report& report) {
    ConfirmWindow window = stored.decoded.entry.window;
    window.deadline += seconds * kMilliseconds;
    if (window.deadline - MillisecondsSinceBoot() > kLongestWindow * kMilliseconds) {
        report.Complain("extend: more than " + std::to_string(kLongestWindow) +
                        " s would be left; give a shorter time");
        return ExitStatus::kInvalid;
    }
    OpenChange change(stored);
    change.RecordWindow(window);
    if (const int error = change.Sync(); error != 0) {
        report.Complain(JournalProblem("extend: the change waits as before", error));
        return ExitStatus::kFailed;
    }
    const int64_t left = SecondsLeft(change.entry());
    ReportState(change.entry(), report);
    report.Member("seconds_left", left);
    report.Inform(NameOfChange(change.entry()) + " waits for its confirmation; " +
                  std::to_string(left) + " s left\n");
    return ExitStatus::kDone;
}

}  // namespace

ExitStatus RunConfirm(const Invocation& invocation, Report& report) {
    const WaitingEntry found("confirm", IdIn(invocation, 0), invocation.limits.wait_seconds,
                             report);
    if (!found.is_found()) {
        return found.status();
    }
    const StoredEntry& stored = found.stored();
    if (stored.decoded.entry.state == EntryState::kConfirmed) {
        ReportState(stored.decoded.entry, report);
        report.Inform(NameOfChange(stored.decoded.entry) + " is already confirmed\n");
        return ExitStatus::kDone;
    }
    return stored.is_waiting ? Confirm(stored, report) : TooLate("confirm", stored, report);
}

ExitStatus RunExtend(const Invocation& invocation, Report& report) {
    const std::optional<int> seconds = ReadWindow("extend", invocation.words.front(), report);
    if (!seconds) {
        return ExitStatus::kInvalid;
    }
    const WaitingEntry found("extend", IdIn(invocation, 1), invocation.limits.wait_seconds, report);
    if (!found.is_found()) {
        return found.status();
    }
    return found.stored().is_waiting ? Extend(found.stored(), *seconds, report)
                                     : TooLate("extend", found.stored(), report);
}

}  // namespace velkctl
