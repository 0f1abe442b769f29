// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_record.cpp - the state before a change, kept in the journal.
#include "velkctl/changes/journal_record.h"

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/files/lock_holder.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {
namespace {

constexpr std::chrono::milliseconds kPause{250};

std::optional<Problem> ProblemOf(std::string message, int error) {
    return error == 0 ? std::nullopt : std::optional(JournalProblem(std::move(message), error));
}

BeginFailure FailureOf(int error) {
    return {JournalProblem("apply: the change was not begun", error), StatusOfJournal(error)};
}

// The process with the library's lock is named, if it is known.
BeginFailure LibraryLocked() {
    BeginFailure failure = FailureOf(EWOULDBLOCK);
    const std::string holder = DescribeLockHolder();
    failure.problem.detail.append(holder.empty() ? "" : "; " + holder + " holds the lock");
    return failure;
}

void NoteWait(int seconds, Report& report) {
    const std::string holder = DescribeLockHolder();
    report.Note("waiting at most " + std::to_string(seconds) + " s for the lock" +
                (holder.empty() ? "" : ", held by " + holder));
}

}  // namespace

// Tries again while another program changes settings, until a signal comes.
int JournalRecord::BeginEntry(const ChangePlan& plan, const Device& device) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(limits_.wait_seconds);
    int error = change_.Begin(plan, device);
    if (error == EWOULDBLOCK && limits_.wait_seconds > 0) {
        NoteWait(limits_.wait_seconds, report_);
    }
    const StopSignals signals;
    while (error == EWOULDBLOCK && std::chrono::steady_clock::now() < end &&
           signals.Pending() == 0) {
        std::this_thread::sleep_for(kPause);
        error = change_.Begin(plan, device);
    }
    return error;
}

// A failing journal is found by the next state.
void JournalRecord::Expect() {
    if (std::optional<Problem> problem = ExpectChange(change_, limits_)) {
        problem->detail.insert(0, problem->message + (problem->detail.empty() ? "" : "; "));
        problem->message = "the files after this change are not known before it";
        report_.Note(*problem);
    }
}

std::optional<BeginFailure> JournalRecord::Begin(const ChangeSet& steps,
                                                 const std::vector<std::string>& restarts,
                                                 const Device& device) {
    if (!lock_.is_held()) {
        return FailureOf(lock_.error());
    }
    const ChangePlan plan{EntryKind::kApply, JournalSteps(steps), restarts};
    if (const int error = BeginEntry(plan, device); error != 0) {
        return error == EWOULDBLOCK ? LibraryLocked() : FailureOf(error);
    }
    if (!change_.interrupted().empty()) {
        report_.Note(InterruptedProblem(change_.interrupted()));
    }
    Expect();
    if (const int error = change_.Advance(EntryState::kApplying); error != 0) {
        change_.Discard();
        return FailureOf(error);
    }
    return std::nullopt;
}

std::optional<Problem> JournalRecord::Flush() {
    return ProblemOf("apply: the files could not be written to disk", change_.FlushFiles());
}

std::optional<Problem> JournalRecord::Finish() {
    const int error = change_.RecordFiles();
    return ProblemOf("apply: the change could not be recorded",
                     error != 0 ? error : change_.Advance(EntryState::kConfirmed));
}

ExitStatus JournalRecord::TakeBack(const Device& device, Report& report) {
    return velkctl::TakeBack(change_, {}, device, report).is_whole() ? ExitStatus::kFailed
                                                                     : ExitStatus::kPartlyBack;
}

}  // namespace velkctl
