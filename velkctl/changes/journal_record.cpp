// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_record.cpp - the state before a change, kept in the journal.
#include "velkctl/changes/journal_record.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/files/file_image.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr int64_t kMilliseconds = 1000;
constexpr char kNotBegun[] = "apply: the change was not begun";

std::optional<Problem> ProblemOf(std::string message, int error) {
    return error == 0 ? std::nullopt : std::optional(JournalProblem(std::move(message), error));
}

BeginFailure JournalFailure(int error) {
    return {JournalProblem(kNotBegun, error), StatusOfJournal(error)};
}

// `lock` is the one that another program holds.
BeginFailure Locked(const char* lock) {
    return {LockedProblem(kNotBegun, lock), ExitStatus::kLocked};
}

BeginFailure FailureOf(int error, const char* lock) {
    return error == EWOULDBLOCK ? Locked(lock) : JournalFailure(error);
}

// True if a setting with another value than before is in the file. The change makes also sets of
// values that the device has, in case that another step switches them.
bool IsAltered(const std::string& path, const JournalEntry& entry) {
    return std::ranges::any_of(entry.steps, [&](const Step& step) {
        return step.old_value != step.new_value && IsChangedBy(path, step.setting.row->id);
    });
}

bool IsInFiles(const std::vector<Step>& steps) {
    return std::ranges::all_of(
        steps, [](const Step& step) { return step.setting.row->held_in.holder == Holder::kFile; });
}

size_t CountChanges(const std::vector<Step>& steps) {
    const auto is_change = [](const Step& step) { return step.old_value != step.new_value; };
    return static_cast<size_t>(std::ranges::count_if(steps, is_change));
}

}  // namespace

// A failing journal is found by the next state.
void JournalRecord::Expect() {
    if (std::optional<Problem> problem = ExpectChange(change_, limits_)) {
        problem->detail.insert(0, problem->message + (problem->detail.empty() ? "" : "; "));
        problem->message = "the files after this change are not known before it";
        report_.Note(*problem);
    }
    for (const FileImage& image : change_.entry().after) {
        if (IsAltered(image.path, change_.entry())) {
            expected_.push_back(image.path);
        }
    }
}

// The library does not notice a tool that cannot write a file, and not every file is read back.
std::optional<Problem> JournalRecord::FindUnwritten() const {
    for (const FileImage& before : change_.entry().before) {
        const bool is_expected = std::ranges::find(expected_, before.path) != expected_.end();
        if (is_expected && ReadFileImage(before.path).HasContentsOf(before)) {
            return Problem{.message = before.path + ": not written",
                           .detail = "the library reported success, but the file is as before"};
        }
    }
    return std::nullopt;
}

std::optional<BeginFailure> JournalRecord::Begin(const ChangeSet& steps,
                                                 const std::vector<std::string>& restarts,
                                                 const Device& device) {
    if (!lock_.is_held()) {
        return FailureOf(lock_.error(), velk::kJournalLock);
    }
    if (std::optional<Problem> problem = FindWaitingProblem(kNotBegun)) {
        return BeginFailure{std::move(*problem), ExitStatus::kWaits};
    }
    const ChangePlan plan{EntryKind::kApply, JournalSteps(steps), restarts};
    NoteWait(velk::kLockFile, limits_.wait_seconds, report_);
    if (const int error = change_.BeginWithin(limits_.wait_seconds, plan, device); error != 0) {
        return FailureOf(error, velk::kLockFile);
    }
    if (!change_.interrupted().empty()) {
        report_.Note(InterruptedProblem(change_.interrupted()));
    }
    Expect();
    if (std::optional<BeginFailure> failure = Guard()) {
        (void)change_.Discard();
        return failure;
    }
    if (const int error = change_.Advance(EntryState::kApplying); error != 0) {
        (void)change_.Discard();
        return JournalFailure(error);
    }
    return std::nullopt;
}

// The guardian reads the entry. Until the change waits, its deadline is the latest end.
std::optional<BeginFailure> JournalRecord::Guard() {
    if (confirmation_.guard == nullptr) {
        return std::nullopt;
    }
    const int64_t seconds = int64_t{confirmation_.step_seconds} + confirmation_.window_seconds;
    change_.RecordWindow(
        {confirmation_.window_seconds, MillisecondsSinceBoot() + seconds * kMilliseconds});
    if (const int error = change_.Sync(); error != 0) {
        return JournalFailure(error);
    }
    GuardianFacts facts;
    if (std::optional<Problem> problem = confirmation_.guard->Start(change_.entry().id, facts)) {
        return BeginFailure{std::move(*problem)};
    }
    change_.RecordGuardian(facts);
    return std::nullopt;
}

EntryState JournalRecord::LastState() const {
    if (confirmation_.guard == nullptr) {
        return EntryState::kDone;
    }
    return confirmation_.is_asked ? EntryState::kConfirmed : EntryState::kWaiting;
}

std::optional<Problem> JournalRecord::Flush() {
    if (std::optional<Problem> unwritten = FindUnwritten()) {
        return unwritten;
    }
    return ProblemOf("apply: the files could not be written to disk", change_.FlushFiles());
}

// A setting that cannot be read is set also if it has its value: undo would have nothing to do.
std::optional<Problem> JournalRecord::Finish() {
    const int error = change_.RecordFiles();
    if (error == 0 && change_.HasChangedNoFile() && IsInFiles(change_.entry().steps)) {
        (void)change_.Discard();
        return std::nullopt;
    }
    const EntryState last = LastState();
    if (last == EntryState::kWaiting) {
        const int64_t window = confirmation_.window_seconds * kMilliseconds;
        change_.RecordWindow({confirmation_.window_seconds, MillisecondsSinceBoot() + window});
    }
    return ProblemOf("apply: the change could not be recorded",
                     error != 0 ? error : change_.Advance(last));
}

void JournalRecord::StepMade() {
    ++made_;
    (void)change_.RecordFiles();
}

// A step that was not made has nothing to put back. The steps after the changes set values again
// that a change has switched.
ExitStatus JournalRecord::TakeBack(const Device& device, Report& report) {
    if (made_ < CountChanges(change_.entry().steps)) {
        change_.RecordSteps(made_);
    }
    if (change_.entry().needs_confirmation()) {
        change_.RecordTakingBack(std::string(kCauseFailure), false);
    }
    (void)ExpectSteps(change_);
    const int seconds = std::max(limits_.wait_seconds, kTakeBackSeconds);
    taken_back_ = PutBackOpen(change_, {.lock_seconds = seconds}, device, report);
    return taken_back_.is_whole() ? ExitStatus::kFailed : ExitStatus::kPartlyBack;
}

void JournalRecord::FinishTakeBack(bool are_interfaces_up) {
    if (are_interfaces_up) {
        CloseTakenBack(change_, taken_back_, report_);
    } else {
        LeaveStuck(change_, taken_back_);
    }
}

}  // namespace velkctl
