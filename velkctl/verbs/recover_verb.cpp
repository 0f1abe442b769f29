// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recover_verb.cpp - the verb that takes back changes that were interrupted.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/changes/revert.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/journal_entries.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The journal may be read-only at the start of a device: the start must go on.
ExitStatus FailForJournal(int error, Report& report) {
    constexpr char kUnusable[] = "recover: the journal cannot be used";
    report.Complain(error == EWOULDBLOCK ? LockedProblem(kUnusable, velk::kJournalLock)
                                         : JournalProblem(kUnusable, error));
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
std::vector<const StoredEntry*> InterruptedEntries(const JournalListing& listing, bool at_boot) {
    const std::string boot_id = RunningBootId();
    std::vector<const StoredEntry*> entries;
    for (auto stored = listing.entries.rbegin(); stored != listing.entries.rend(); ++stored) {
        const bool is_meant = !at_boot || stored->decoded.entry.boot_id != boot_id;
        if (stored->is_interrupted() && is_meant) {
            entries.push_back(&*stored);
        }
    }
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
        return "is not put back: another program is changing settings";
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

void ReportOutcome(const JournalEntry& entry, std::string_view outcome, const Report& report) {
    report.Inform("change " + entry.id + " of " + LocalTime(entry.time) + " " +
                  std::string(outcome) + "\n");
}

ExitStatus PutEntryBack(OpenChange& change, const Invocation& invocation, const Device& device,
                        Report& report) {
    RevertOptions options{.put_back = {.force = invocation.force, .at_boot = invocation.boot},
                          .cause = std::string(CauseOf(change.entry())),
                          .is_untold = invocation.boot};
    options.put_back.lock_seconds = std::max(invocation.limits.wait_seconds, kSetSeconds);
    NoteWait(velk::kLockFile, invocation.limits.wait_seconds, report);
    const StopSignals signals;
    const RevertResult result =
        Revert(change, options, invocation.limits.wait_seconds, device, report);
    ReportOutcome(change.entry(), OutcomeOf(result), report);
    if (const int signal = signals.Pending(); signal != 0) {
        EndInterrupted(signal, "change " + change.entry().id + " " + OutcomeOf(result), report);
    }
    const ExitStatus status = StatusOf(result.put_back);
    return status == ExitStatus::kDone ? result.restarts.status : status;
}

ExitStatus NotClosed(const JournalEntry& entry, std::string detail, std::string remedy,
                     Report& report) {
    report.Complain(Problem{.message = "change " + entry.id + ": not closed",
                            .detail = std::move(detail),
                            .remedy = std::move(remedy)});
    return ExitStatus::kFailed;
}

// Closes the change as it is. The files are on disk before the entry says so.
ExitStatus KeepEntry(OpenChange& change, Report& report) {
    // A trial run finds the files that the change would have left.
    if (const std::optional<Problem> problem = ExpectSteps(change)) {
        report.Note(*problem);
    }
    if (const std::string cut = FindCutFile(change.entry()); !cut.empty()) {
        return NotClosed(change.entry(), cut + " was cut", "'velkctl recover' puts it back",
                         report);
    }
    const int flushed = change.FlushFiles();
    const int error = flushed != 0 ? flushed : change.Advance(EntryState::kKept);
    if (error != 0) {
        return NotClosed(change.entry(), strerror(error), "", report);
    }
    ReportOutcome(change.entry(), "is closed; the present values stay", report);
    return ExitStatus::kDone;
}

// A change that was prepared has changed nothing: its interfaces stay as they are.
ExitStatus RecoverEntry(const StoredEntry& stored, const Invocation& invocation,
                        const Device& device, Report& report) {
    OpenChange change(stored);
    if (change.is_not_begun()) {
        (void)Revert(change, {}, invocation.limits.wait_seconds, device, report);
        ReportOutcome(change.entry(), "was not begun", report);
        return ExitStatus::kDone;
    }
    if (invocation.keep) {
        return KeepEntry(change, report);
    }
    return PutEntryBack(change, invocation, device, report);
}

// Returns the status of the last change that is not taken back, or kDone.
ExitStatus RecoverEntries(const std::vector<const StoredEntry*>& entries,
                          const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report, OnSignal::kFinishCommand);
    ExitStatus status = ExitStatus::kDone;
    Json changes = Json::array();
    for (const StoredEntry* entry : entries) {
        const ExitStatus own = RecoverEntry(*entry, invocation, device, report);
        status = own == ExitStatus::kDone ? status : own;
        changes.push_back(entry->decoded.entry.id);
    }
    if (entries.empty()) {
        report.Inform("nothing to recover\n");
    }
    report.Member("changes", std::move(changes));
    return status;
}

}  // namespace

ExitStatus RunRecover(const Invocation& invocation, Report& report) {
    if (invocation.force && invocation.keep) {
        return report.Refuse("recover: --force and --keep exclude each other; give one of them");
    }
    const JournalLock lock =
        AwaitJournalLock(JournalLock::Use::kAlone, invocation.limits.wait_seconds, 0, report);
    if (!lock.is_held()) {
        return FailForJournal(lock.error(), report);
    }
    const JournalListing listing = ReadJournal();
    if (listing.error != 0) {
        return FailForJournal(listing.error, report);
    }
    for (const StoredEntry& stored : listing.entries) {
        NoteUnusable(stored, report);
    }
    RemoveTornEntries(listing);
    return RecoverEntries(InterruptedEntries(listing, invocation.boot), invocation, report);
}

}  // namespace velkctl
