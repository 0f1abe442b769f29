// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_record.cpp - the journal entry of a plain set.
#include "velkctl/journal/set_record.h"

#include <cerrno>
#include <optional>
#include <utility>

#include "lib/base/paths.h"
#include "velkctl/call/answer.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

constexpr char kUnchanged[] = "set: nothing was changed";

bool MayHaveEffect(const Answer& answer) {
    return answer.ok() || answer.timed_out;
}

size_t CountImages(const JournalEntry& entry) {
    return entry.after.size() + entry.between.size();
}

bool ChangesValueOnly(const Step& step) {
    return step.setting.row->held_in.holder != Holder::kFile && step.old_value != step.new_value;
}

}  // namespace

SetRecord::SetRecord(const std::vector<SettingChange>& changes, int wait_seconds, Device& device,
                     Report& report)
    : plan_{.steps = JournalSteps(changes)},
      device_(device),
      report_(report),
      lock_(AwaitJournalLock(JournalLock::Use::kAlone, wait_seconds, kLeastJournalWait, report)) {
    if (const std::optional<Problem> problem = FindWaitingProblem(kUnchanged)) {
        Refuse(*problem, ExitStatus::kWaits);
        return;
    }
    if (lock_.error() == EWOULDBLOCK) {
        Refuse(LockedProblem(kUnchanged, velk::kJournalLock), ExitStatus::kLocked);
        return;
    }
    if (!lock_.is_held()) {
        GiveUp(lock_.error());
    }
    device.WatchSets(*this);
}

void SetRecord::Refuse(const Problem& problem, ExitStatus status) {
    report_.Complain(problem);
    refusal_ = status;
}

void SetRecord::GiveUp(int error) {
    Problem problem = JournalProblem("set: undo cannot take this set back", error);
    problem.remedy.append(", or give --no-journal");
    report_.Note(problem);
    is_given_up_ = true;
}

bool SetRecord::BeforeAttempt() {
    return is_given_up_ || change_.is_begun() || Begin();
}

bool SetRecord::Begin() {
    const int error = change_.Begin(plan_, device_);
    if (error == EWOULDBLOCK) {
        return false;
    }
    if (error == EBUSY) {
        is_given_up_ = true;  // the library fails for the same reason
        return true;
    }
    NoteInterrupted();
    const int failure = error != 0 ? error : change_.Advance(EntryState::kApplying);
    if (failure != 0) {
        GiveUp(failure);
    }
    return true;
}

void SetRecord::NoteInterrupted() {
    if (!change_.interrupted().empty() && !std::exchange(has_noted_, true)) {
        report_.Note(InterruptedProblem(change_.interrupted()));
    }
}

void SetRecord::AfterAttempt(const Answer& answer) {
    if (is_given_up_) {
        return;
    }
    if (answer.is_locked()) {
        Withdraw();
        return;
    }
    CountStep(answer);
    if (attempted_ == plan_.steps.size()) {
        Finish();
    }
}

// The program with the lock changes files: the next attempt reads them anew. Ctrl-C while that is
// awaited leaves no entry of a set that has done nothing.
void SetRecord::Withdraw() {
    if (attempted_ == 0 && change_.is_begun()) {
        (void)change_.Discard();
    }
}

void SetRecord::CountStep(const Answer& answer) {
    const Step& step = change_.entry().steps[attempted_];
    const size_t images = CountImages(change_.entry());
    (void)change_.RecordFiles();
    ++attempted_;
    const bool has_changed_value = MayHaveEffect(answer) && ChangesValueOnly(step);
    has_changed_value_ = has_changed_value_ || has_changed_value;
    if (has_changed_value || CountImages(change_.entry()) > images) {
        made_ = attempted_;
    }
}

void SetRecord::Finish() {
    if (!change_.is_begun() || is_finished_) {
        return;
    }
    is_finished_ = true;
    if (is_given_up_) {
        (void)change_.Discard();
        return;
    }
    // The files are on disk before the entry is closed or removed. A file that was written again
    // with its old bytes can be cut like any other.
    const int flushed = change_.FlushFiles();
    if (flushed == 0 && change_.HasChangedNoFile() && !has_changed_value_) {
        (void)change_.Discard();
        return;
    }
    Close(flushed);
}

// A file that is not on disk may be cut when the power fails: its entry stays open. An entry of
// files on disk that cannot be closed is removed: recover would take the set back.
void SetRecord::Close(int flushed) {
    change_.RecordSteps(made_);
    if (flushed != 0) {
        report_.Note(JournalProblem("set: the journal may call this set interrupted", flushed));
        return;
    }
    if (const int error = change_.Advance(EntryState::kDone); error != 0) {
        (void)change_.Discard();
        GiveUp(error);
    }
}

}  // namespace velkctl
