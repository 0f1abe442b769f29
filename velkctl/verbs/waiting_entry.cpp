// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// waiting_entry.cpp - the change that confirm, extend and revert are about.
#include "velkctl/verbs/waiting_entry.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <unistd.h>

#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

bool MayDecide(const JournalEntry& entry) {
    return getuid() == 0 || getuid() == entry.user;
}

}  // namespace

WaitingEntry::WaitingEntry(std::string_view verb, std::string id, int wait_seconds, Report& report)
    : verb_(verb),
      id_(std::move(id)),
      report_(report),
      lock_(AwaitJournalLock(JournalLock::Use::kAlone, wait_seconds, kLeastJournalWait, report)),
      status_(Find()) {
}

ExitStatus WaitingEntry::Complain(const Problem& problem) const {
    report_.Complain(problem);
    return ExitStatus::kFailed;
}

std::optional<StoredEntry> WaitingEntry::Read() const {
    if (id_.empty()) {
        return ReadLastEntry();
    }
    JournalListing listing = ReadJournal();
    const auto found = std::ranges::find_if(
        listing.entries, [&](const StoredEntry& stored) { return stored.decoded.entry.id == id_; });
    return found == listing.entries.end() ? std::nullopt : std::optional(std::move(*found));
}

// Another run makes the change, or takes it back: that takes as long as its restarts.
ExitStatus WaitingEntry::Locked() const {
    const std::string message = verb_ + ": nothing was changed";
    if (lock_.error() == EWOULDBLOCK) {
        if (const std::optional<Problem> problem = FindWaitingProblem(message)) {
            report_.Complain(*problem);
            return verb_ == "confirm" ? ExitStatus::kFailed : ExitStatus::kLocked;
        }
    }
    report_.Complain(JournalProblem(message, lock_.error()));
    return StatusOfJournal(lock_.error());
}

ExitStatus WaitingEntry::Find() {
    if (!lock_.is_held()) {
        return Locked();
    }
    std::optional<StoredEntry> stored = Read();
    if (!stored && !id_.empty()) {
        return Complain({.message = verb_ + ": there is no change " + Quoted(id_),
                         .remedy = "'velkctl pending' shows the change that waits"});
    }
    if (!stored || !stored->is_whole() || !stored->decoded.entry.needs_confirmation()) {
        return Complain({.message = verb_ + ": no change waits for its confirmation"});
    }
    const JournalEntry& entry = stored->decoded.entry;
    if (!MayDecide(entry)) {
        return Complain(
            {.message = verb_ + ": " + NameOfChange(entry) + " is one of " + UserName(entry.user),
             .remedy = "run it as this user or as root"});
    }
    stored_ = std::move(stored);
    return ExitStatus::kDone;
}

std::string NameOfChange(const JournalEntry& entry) {
    return "change " + entry.id + " of " + ClockTime(entry.time);
}

bool RefuseWhileOneWaits(std::string_view message, Report& report) {
    const std::optional<Problem> problem = FindWaitingProblem(std::string(message));
    if (problem) {
        report.Complain(*problem);
    }
    return problem.has_value();
}

}  // namespace velkctl
