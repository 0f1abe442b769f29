// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// undo_verb.cpp - the verb that takes back a finished change.
#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/library_lock.h"
#include "velkctl/changes/dhcp_end.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/journal_entries.h"
#include "velkctl/verbs/set_notes.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

ExitStatus FailForJournal(int error, Report& report) {
    report.Complain(JournalProblem("undo: nothing was changed", error));
    return StatusOfJournal(error);
}

bool IsFinished(const StoredEntry& stored) {
    const EntryState state = stored.decoded.entry.state;
    return stored.is_whole() && (state == EntryState::kDone || state == EntryState::kConfirmed);
}

// Returns the entry to take back: the one of this id, or the last one that is finished or was
// interrupted.
const StoredEntry* FindEntry(const JournalListing& listing, const std::string& id) {
    const auto is_meant = [&](const StoredEntry& stored) {
        return id.empty() ? IsFinished(stored) || stored.is_interrupted()
                          : stored.decoded.entry.id == id;
    };
    const auto found = std::find_if(listing.entries.rbegin(), listing.entries.rend(), is_meant);
    return found == listing.entries.rend() ? nullptr : &*found;
}

// Returns the reason why the entry cannot be taken back; nothing if it can.
std::optional<Problem> RefusalOf(const StoredEntry* stored, const std::string& id) {
    if (stored == nullptr) {
        return id.empty() ? Problem{"undo: there is no change to take back"}
                          : Problem{.message = "undo: there is no change " + Quoted(id),
                                    .remedy = "'velkctl history' lists the changes"};
    }
    const std::string subject = "undo: change " + stored->decoded.entry.id;
    if (stored->is_interrupted()) {
        return Problem{.message = subject + " was interrupted",
                       .remedy = "'velkctl recover' takes it back"};
    }
    if (!stored->is_whole()) {
        return Problem{.message = subject + " cannot be taken back", .detail = StateText(*stored)};
    }
    return std::nullopt;
}

// The steps of the undo set the old values.
ChangePlan PlanOf(const JournalEntry& entry) {
    ChangePlan plan{.kind = EntryKind::kUndo, .restarts = entry.restarts, .undoes = entry.id};
    for (const Step& step : entry.steps) {
        plan.steps.push_back({step.setting, step.old_value});
    }
    return plan;
}

std::vector<Setting> SettingsOf(const JournalEntry& entry) {
    std::vector<Setting> settings;
    for (const Step& step : entry.steps) {
        settings.push_back(step.setting);
    }
    return settings;
}

ExitStatus Obstructed(const std::vector<Problem>& obstacles, const std::string& id,
                      Report& report) {
    for (const Problem& obstacle : obstacles) {
        report.Complain(obstacle);
    }
    report.Complain(Problem{.message = "undo: nothing was changed",
                            .remedy = "'velkctl undo " + id + " --force' replaces these values"});
    return ExitStatus::kFailed;
}

// Begins the entry of the undo. Returns 0 or the error of the journal; then there is no entry.
int Begin(OpenChange& change, const JournalEntry& entry, const Device& device) {
    int error = change.Begin(PlanOf(entry), device);
    error = error != 0 ? error : change.Expect(entry.before);
    error = error != 0 ? error : change.Advance(EntryState::kApplying);
    if (error != 0 && change.is_begun()) {
        change.Discard();
    }
    return error;
}

void ReportUndo(const JournalEntry& entry, const OpenChange& change, Report& report) {
    report.Inform(std::string(NameOf(entry.kind)) + " " + entry.id + " of " +
                  LocalTime(entry.time) + " is taken back\n" + StepLines(change.entry()));
    report.Member("id", change.entry().id);
    report.Member("undoes", entry.id);
    report.Member("settings", StepsInJson(change.entry()));
}

ExitStatus StatusWithoutChange(const PutBackResult& result, const JournalEntry& entry,
                               Report& report) {
    if (result.is_locked) {
        return FailForJournal(EWOULDBLOCK, report);
    }
    if (result.left.empty()) {
        report.Inform("change " + entry.id + " is already taken back\n");
        return ExitStatus::kDone;
    }
    return ExitStatus::kPartlyBack;
}

// Closes the entry of the undo, or removes it if nothing has changed.
ExitStatus Close(OpenChange& change, const PutBackResult& result, const JournalEntry& entry,
                 Report& report) {
    for (const Problem& problem : result.left) {
        report.Complain(problem);
    }
    if (!result.has_changed) {
        change.Discard();
        return StatusWithoutChange(result, entry, report);
    }
    (void)change.RecordFiles();
    if (const int error = change.Advance(EntryState::kDone); error != 0) {
        report.Note(JournalProblem("undo: the journal may call it interrupted", error));
    }
    ReportUndo(entry, change, report);
    return result.left.empty() ? ExitStatus::kDone : ExitStatus::kPartlyBack;
}

ExitStatus TakeBackEntry(const JournalEntry& entry, const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    (void)AwaitLibraryLock(invocation.limits.wait_seconds);
    const std::vector<Problem> obstacles =
        invocation.force ? std::vector<Problem>() : FindObstacles(entry, device);
    if (!obstacles.empty()) {
        return Obstructed(obstacles, entry.id, report);
    }
    const SetNotes notes(SettingsOf(entry), device, false);
    OpenChange change;
    if (const int error = Begin(change, entry, device); error != 0) {
        return FailForJournal(error, report);
    }
    EndClientsOf(entry, device, report);
    const PutBackResult result = PutBack(entry, {.force = invocation.force}, device);
    const ExitStatus status = Close(change, result, entry, report);
    if (status != ExitStatus::kDone || !result.has_changed) {
        return status;
    }
    notes.Print(SettingsOf(entry), report);
    return RestartAfter(entry, device, report);
}

}  // namespace

ExitStatus RunUndo(const Invocation& invocation, Report& report) {
    const JournalLock lock(JournalLock::Use::kAlone, invocation.limits.wait_seconds);
    if (!lock.is_held()) {
        return FailForJournal(lock.error(), report);
    }
    if (RefuseWhileOneWaits("undo: nothing was changed", report)) {
        return ExitStatus::kWaits;
    }
    const JournalListing listing = ReadJournal();
    const std::string id = invocation.words.empty() ? "" : invocation.words.front();
    const StoredEntry* stored = FindEntry(listing, id);
    if (const std::optional<Problem> refusal = RefusalOf(stored, id)) {
        report.Complain(*refusal);
        return ExitStatus::kFailed;
    }
    return TakeBackEntry(stored->decoded.entry, invocation, report);
}

}  // namespace velkctl
