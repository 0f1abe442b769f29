// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recover_verb.cpp - the verb that takes back changes that were interrupted.
#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/changes/revert.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/verbs/journal_entries.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The journal may be read-only at the start of a device: the start must go on.
ExitStatus FailForJournal(int error, Report& report) {
    report.Complain(JournalProblem("recover: the journal cannot be used", error));
    return StatusOfJournal(error);
}

void NoteUnusable(const StoredEntry& stored, Report& report) {
    const bool is_torn = stored.error == 0 && stored.decoded.health == EntryHealth::kTorn;
    if (!stored.is_whole() && !is_torn) {
        report.Note(Problem{.message = "recover: " + stored.path + " is left as it is",
                            .detail = StateText(stored)});
    }
}

// Returns the entries to take back, the last one first: it was made on top of the others.
std::vector<StoredEntry> InterruptedEntries(const JournalListing& listing, bool at_boot) {
    std::vector<StoredEntry> entries;
    for (const StoredEntry& stored : listing.entries) {
        const bool is_meant = !at_boot || stored.decoded.entry.boot_id != RunningBootId();
        if (stored.is_interrupted() && is_meant) {
            entries.push_back(stored);
        }
    }
    std::ranges::reverse(entries);
    return entries;
}

// Only a change that needs a confirmation has a reason to say.
std::string_view CauseOf(const JournalEntry& entry) {
    if (!entry.needs_confirmation()) {
        return "";
    }
    return entry.boot_id == RunningBootId() ? kCauseInterrupted : kCauseBoot;
}

std::string OutcomeOf(const RevertResult& result) {
    if (result.is_locked()) {
        return "another program is changing settings";
    }
    if (!result.put_back.left.empty()) {
        return "is put back in part";
    }
    return result.put_back.waits_for_daemon ? "waits for the wireless daemon" : "is put back";
}

ExitStatus StatusOf(const PutBackResult& result) {
    if (result.is_locked) {
        return ExitStatus::kLocked;
    }
    return result.left.empty() ? ExitStatus::kDone : ExitStatus::kPartlyBack;
}

ExitStatus RecoverEntry(const StoredEntry& stored, const Invocation& invocation,
                        const Device& device, Report& report) {
    OpenChange change(stored);
    const RevertOptions options{.at_boot = invocation.boot,
                                .cause = std::string(CauseOf(stored.decoded.entry)),
                                .is_untold = invocation.boot};
    const RevertResult result = Revert(change, options, invocation.limits, device, report);
    report.Inform("change " + change.entry().id + " of " + LocalTime(change.entry().time) + " " +
                  OutcomeOf(result) + "\n");
    const ExitStatus status = StatusOf(result.put_back);
    return status == ExitStatus::kDone ? result.restart : status;
}

}  // namespace

ExitStatus RunRecover(const Invocation& invocation, Report& report) {
    const JournalLock lock(JournalLock::Use::kAlone, invocation.limits.wait_seconds);
    if (!lock.is_held()) {
        return FailForJournal(lock.error(), report);
    }
    const JournalListing listing = ReadJournal();
    for (const StoredEntry& stored : listing.entries) {
        NoteUnusable(stored, report);
    }
    RemoveTornEntries(listing);
    const Device device(invocation.limits, report);
    ExitStatus status = ExitStatus::kDone;
    Json changes = Json::array();
    const std::vector<StoredEntry> interrupted = InterruptedEntries(listing, invocation.boot);
    for (const StoredEntry& stored : interrupted) {
        const ExitStatus own = RecoverEntry(stored, invocation, device, report);
        status = own == ExitStatus::kDone ? status : own;
        changes.push_back(stored.decoded.entry.id);
    }
    if (interrupted.empty()) {
        report.Inform("nothing to recover\n");
    }
    report.Member("changes", std::move(changes));
    return status;
}

}  // namespace velkctl
