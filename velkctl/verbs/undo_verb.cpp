// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// undo_verb.cpp - the verb that takes back a finished change.
#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/restarts.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/journal_entries.h"
#include "velkctl/verbs/set_notes.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kNothingChanged[] = "undo: nothing was changed";

// `lock` is the one that was tried.
ExitStatus FailForJournal(int error, const char* lock, Report& report) {
    report.Complain(error == EWOULDBLOCK ? LockedProblem(kNothingChanged, lock)
                                         : JournalProblem(kNothingChanged, error));
    return StatusOfJournal(error);
}

// Nobody can say whether the change of an unknown entry is finished.
bool MayBeFinished(const StoredEntry& stored) {
    const bool is_torn = stored.error == 0 && stored.decoded.health == EntryHealth::kTorn;
    return stored.is_whole() ? stored.is_finished() || stored.is_interrupted() : !is_torn;
}

// Returns the entry to take back: the one of this id, or the last one that may be finished or was
// interrupted.
const StoredEntry* FindEntry(const JournalListing& listing, const std::optional<std::string>& id) {
    const auto is_meant = [&](const StoredEntry& stored) {
        return id ? stored.decoded.entry.id == *id : MayBeFinished(stored);
    };
    const auto found = std::find_if(listing.entries.rbegin(), listing.entries.rend(), is_meant);
    return found == listing.entries.rend() ? nullptr : &*found;
}

ExitStatus RefuseMissing(const std::optional<std::string>& id, Report& report) {
    if (id) {
        return report.Refuse(Problem{.message = "undo: there is no change " + Quoted(*id),
                                     .remedy = "'velkctl history' lists the changes"});
    }
    report.Complain("undo: there is no change to take back");
    return ExitStatus::kFailed;
}

// Returns the reason why the entry cannot be taken back; nothing if it can.
std::optional<Problem> RefusalOf(const StoredEntry& stored, const std::optional<std::string>& id) {
    const std::string subject = "undo: change " + stored.decoded.entry.id;
    if (stored.is_interrupted()) {
        return Problem{.message = subject + " was interrupted",
                       .remedy = "'velkctl recover' takes it back"};
    }
    if (!stored.is_whole() || stored.decoded.entry.state == EntryState::kKept) {
        return Problem{.message = subject + " cannot be taken back",
                       .detail = StateText(stored),
                       .remedy = id ? "" : "'velkctl undo ID' takes an earlier one back"};
    }
    return std::nullopt;
}

// The steps of the undo set the old values.
ChangePlan PlanOf(const JournalEntry& entry) {
    ChangePlan plan{.kind = EntryKind::kUndo, .restarts = entry.restarts, .undoes = entry.id};
    for (const Step& step : entry.steps) {
        plan.steps.push_back({step.setting, step.old_value, step.new_value});
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

// Gives a setting that the library could not read its likely cause. Returns the exit status for it.
ExitStatus Explain(Problem& problem) {
    const std::optional<Setting> setting = FindSetting(problem.setting);
    if (!problem.result || !setting) {
        return ExitStatus::kFailed;
    }
    const Answer answer{*problem.result};
    Problem explained = ProblemOfGet(problem.message, *setting, answer);
    explained.detail =
        explained.detail.empty() ? problem.detail : "it cannot be read; " + explained.detail;
    problem = std::move(explained);
    return StatusWithCause(*setting, answer);
}

// Reports the items that are left. Returns the exit status if nothing was changed.
ExitStatus ReportLeft(std::vector<Problem> left, Report& report) {
    ExitStatus status = ExitStatus::kFailed;
    for (Problem& problem : left) {
        const ExitStatus own = Explain(problem);
        status = status == ExitStatus::kFailed ? own : status;
        report.Complain(problem);
    }
    return status;
}

ExitStatus NothingChanged(std::vector<Problem> left, Report& report) {
    const ExitStatus status = ReportLeft(std::move(left), report);
    report.Complain(kNothingChanged);
    return status;
}

// Begins the entry of the undo. Returns 0 or the error of the journal; then there is no entry.
int Begin(OpenChange& change, const JournalEntry& entry, int wait_seconds, const Device& device) {
    int error = change.BeginWithin(wait_seconds, PlanOf(entry), device);
    error = error != 0 ? error : change.Expect(entry.before);
    error = error != 0 ? error : change.Advance(EntryState::kApplying);
    if (error != 0 && change.is_begun()) {
        (void)change.Discard();
    }
    return error;
}

// The settings that were put back in part are the steps of the undo.
std::vector<std::string> NamesOfSteps(const OpenChange& change, const PutBackResult& result) {
    std::vector<std::string> names;
    for (const Step& step : change.entry().steps) {
        const std::string name = step.setting.name();
        const bool is_back = std::ranges::find(result.put_back, name) != result.put_back.end();
        if (is_back && step.old_value != step.new_value) {
            names.push_back(name);
        }
    }
    return names;
}

// Closes the entry of the undo. It expects the files from before the other change; one that differs
// has text of another program. If the entry cannot be closed, it is removed: recover would make the
// change again.
void Close(OpenChange& change, const PutBackResult& result, Report& report) {
    if (!result.left.empty()) {
        change.RecordMade(NamesOfSteps(change, result));
    }
    if (const int error = change.Advance(EntryState::kDone); error != 0) {
        report.Note(JournalProblem(change.Discard() ? "undo: undo cannot take this back"
                                                    : "undo: the journal may call it interrupted",
                                   error));
    }
}

// A later recover completes the files: it gives them their bytes from before the undo.
ExitStatus LeaveOpen(OpenChange& change, const PutBackResult& result, Report& report) {
    (void)ReportLeft(result.left, report);
    (void)change.Advance(EntryState::kStuck);
    report.Complain(
        Problem{.message = "undo: stopped before its end",
                .remedy = "when the disk is sound, 'velkctl recover', then undo again"});
    return ExitStatus::kPartlyBack;
}

ExitStatus StatusWithoutChange(const PutBackResult& result, const JournalEntry& entry,
                               Report& report) {
    if (result.is_locked) {
        return FailForJournal(EWOULDBLOCK, velk::kLockFile, report);
    }
    if (!result.left.empty()) {
        return NothingChanged(result.left, report);
    }
    report.Inform("change " + entry.id + " is already taken back\n");
    return ExitStatus::kDone;
}

// "set k7f2 of 2026-11-22 14:02:11 is taken back by p3xv, restarted eth0 (1 s)", and its settings
void ReportUndo(const JournalEntry& entry, const OpenChange& undo, bool is_whole,
                const std::vector<DoneRestart>& restarts, Report& report) {
    std::string text = std::string(NameOf(entry.kind)) + " " + entry.id + " of ";
    text.append(LocalTime(entry.time))
        .append(is_whole ? " is taken back" : " is taken back in part");
    if (undo.is_begun()) {
        text.append(" by ").append(undo.entry().id);
    }
    text.append(RestartedText(restarts)).append("\n").append(StepLines(undo.entry()));
    report.Inform(text);
    report.Member("id", undo.is_begun() ? Json(undo.entry().id) : Json(nullptr));
    report.Member("undoes", entry.id);
    report.Member("settings", StepsInJson(undo.entry()));
    report.Member("restarts", RestartsInJson(restarts));
}

std::vector<Problem> ObstaclesOf(const JournalEntry& entry, const PutBackOptions& options,
                                 const Device& device) {
    return options.force ? std::vector<Problem>() : FindObstacles(entry, options, device);
}

PutBackOptions OptionsOf(const JournalEntry& entry, const Invocation& invocation) {
    PutBackOptions options{.force = invocation.force};
    options.fix_if_set_since = "'velkctl undo " + entry.id + " --force' replaces it";
    options.fix.clear();
    return options;
}

// Ends the undo if it has changed nothing, or could not write a file.
ExitStatus Abandon(OpenChange& change, const PutBackResult& result, const JournalEntry& entry,
                   Report& report) {
    if (result.has_changed) {
        return LeaveOpen(change, result, report);
    }
    (void)change.Discard();
    return StatusWithoutChange(result, entry, report);
}

// Puts the files and values back, then restarts the interfaces of the change, or those that are
// down if the undo ends before.
ExitStatus PutChangeBack(OpenChange& change, const JournalEntry& entry,
                         const Invocation& invocation, const Device& device, Report& report) {
    std::vector<std::string> down;
    PutBackOptions options = OptionsOf(entry, invocation);
    options.first = [&] { down = EndClientsOf(entry, device, report); };
    options.begun_with = &change.entry().before;
    const PutBackResult result = PutBack(entry, std::move(options), device);
    if (!result.has_changed || result.has_disk_failed) {
        const ExitStatus status = Abandon(change, result, entry, report);
        (void)RestartAll(down, invocation.limits.wait_seconds, report);
        return status;
    }
    Close(change, result, report);
    (void)ReportLeft(result.left, report);
    const RestartsResult restarts =
        RestartAll(entry.restarts, invocation.limits.wait_seconds, report);
    ReportUndo(entry, change, result.is_whole(), restarts.restarts, report);
    return result.is_whole() ? restarts.status : ExitStatus::kPartlyBack;
}

// The status may be that of a restart.
std::string StateAfter(const OpenChange& change, ExitStatus status) {
    if (!change.is_begun()) {
        return "nothing was changed";
    }
    return status == ExitStatus::kPartlyBack ? "the change is taken back in part"
                                             : "the change is taken back";
}

// A signal ends velkctl only when the interfaces are up again.
ExitStatus PutChangeBackInPeace(OpenChange& change, const JournalEntry& entry,
                                const Invocation& invocation, Report& report) {
    const StopSignals signals;
    const Device device(invocation.limits, report, OnSignal::kFinishCommand);
    const ExitStatus status = PutChangeBack(change, entry, invocation, device, report);
    if (const int signal = signals.Pending(); signal != 0) {
        EndInterrupted(signal, StateAfter(change, status), report);
    }
    return status;
}

ExitStatus TakeBackEntry(const JournalEntry& recorded, const Invocation& invocation,
                         Report& report) {
    const Device device(invocation.limits, report);
    const int wait = invocation.limits.wait_seconds;
    NoteWait(velk::kLockFile, wait, report);
    (void)AwaitLibraryLock(wait);
    const JournalEntry entry = WithOwnImages(recorded);
    std::vector<Problem> obstacles = ObstaclesOf(entry, OptionsOf(entry, invocation), device);
    if (!obstacles.empty()) {
        return NothingChanged(std::move(obstacles), report);
    }
    const SetNotes notes(SettingsOf(entry), device, false);
    OpenChange change;
    if (const int error = Begin(change, entry, wait, device); error != 0) {
        return FailForJournal(error, velk::kLockFile, report);
    }
    if (!change.interrupted().empty()) {
        report.Note(InterruptedProblem(change.interrupted()));
    }
    const ExitStatus status = PutChangeBackInPeace(change, entry, invocation, report);
    if (status == ExitStatus::kDone && change.is_begun()) {
        notes.Print(SettingsOf(entry), report);
    }
    return status;
}

}  // namespace

ExitStatus RunUndo(const Invocation& invocation, Report& report) {
    const JournalLock lock =
        AwaitJournalLock(JournalLock::Use::kAlone, invocation.limits.wait_seconds, 0, report);
    if (RefuseWhileOneWaits(kNothingChanged, report)) {
        return ExitStatus::kWaits;
    }
    if (!lock.is_held()) {
        return FailForJournal(lock.error(), velk::kJournalLock, report);
    }
    const JournalListing listing = ReadJournal();
    if (listing.error != 0) {
        return FailForJournal(listing.error, velk::kJournalLock, report);
    }
    const std::optional<std::string> id =
        invocation.words.empty() ? std::nullopt : std::optional(invocation.words.front());
    const StoredEntry* stored = FindEntry(listing, id);
    if (stored == nullptr) {
        return RefuseMissing(id, report);
    }
    if (const std::optional<Problem> refusal = RefusalOf(*stored, id)) {
        report.Complain(*refusal);
        return ExitStatus::kFailed;
    }
    return TakeBackEntry(stored->decoded.entry, invocation, report);
}

}  // namespace velkctl
