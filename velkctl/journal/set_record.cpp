// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_record.cpp - the journal entry of a plain set.
#include "velkctl/journal/set_record.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"

namespace velkctl {
namespace {

// A plain set of another run ends soon.
constexpr int kLeastWait = 2;
constexpr char kUnchanged[] = "set: nothing was changed";

bool MayHaveEffect(const Answer& answer) {
    return answer.ok() || answer.timed_out;
}

bool IsLocked(const Answer& answer) {
    return !answer.timed_out && answer.result == LIB_VELK_LOCKED;
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
      lock_(JournalLock::Use::kShared, std::max(wait_seconds, kLeastWait)) {
    if (lock_.error() == EWOULDBLOCK) {
        Refuse(JournalProblem(kUnchanged, EWOULDBLOCK), ExitStatus::kLocked);
        return;
    }
    if (const std::optional<Problem> problem = FindWaitingProblem(kUnchanged)) {
        Refuse(*problem, ExitStatus::kWaits);
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

void SetRecord::NoteInterrupted() const {
    if (!change_.interrupted().empty()) {
        report_.Note(Problem{.message = "change " + change_.interrupted() + " was interrupted",
                             .remedy = "'velkctl recover' takes it back"});
    }
}

void SetRecord::AfterAttempt(const Answer& answer) {
    if (is_given_up_ || IsLocked(answer)) {
        return;
    }
    CountStep(answer);
    if (attempted_ == plan_.steps.size()) {
        Finish();
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
    if (is_given_up_ || (change_.HasChangedNoFile() && !has_changed_value_)) {
        change_.Discard();
        return;
    }
    Close();
}

// The files are on disk before the entry says so.
void SetRecord::Close() {
    change_.RecordSteps(made_);
    const int flushed = change_.FlushFiles();
    const int error = flushed != 0 ? flushed : change_.Advance(EntryState::kDone);
    if (error != 0) {
        report_.Note(JournalProblem("set: the journal may call this set interrupted", error));
    }
}

}  // namespace velkctl
