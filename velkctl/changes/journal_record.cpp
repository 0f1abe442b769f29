// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_record.cpp - the state before a change, kept in the journal.
#include "velkctl/changes/journal_record.h"

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/journal/waiting_change.h"

namespace velkctl {
namespace {

constexpr std::chrono::milliseconds kPause{250};
constexpr int64_t kMilliseconds = 1000;
constexpr char kNotBegun[] = "apply: the change was not begun";

std::optional<Problem> ProblemOf(std::string message, int error) {
    return error == 0 ? std::nullopt : std::optional(JournalProblem(std::move(message), error));
}

BeginFailure FailureOf(int error) {
    return {JournalProblem(kNotBegun, error), StatusOfJournal(error)};
}

}  // namespace

// Tries again while another program changes settings.
int JournalRecord::BeginEntry(const ChangePlan& plan, const Device& device) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(limits_.wait_seconds);
    int error = change_.Begin(plan, device);
    while (error == EWOULDBLOCK && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kPause);
        error = change_.Begin(plan, device);
    }
    return error;
}

// A failing journal is found by the next state.
void JournalRecord::Expect() {
    if (std::optional<Problem> problem = ExpectChange(change_, limits_)) {
        problem->message.insert(0, "the files after this change are not known before it: ");
        report_.Note(*problem);
    }
}

std::optional<BeginFailure> JournalRecord::Begin(const ChangeSet& steps,
                                                 const std::vector<std::string>& restarts,
                                                 const Device& device) {
    if (!lock_.is_held()) {
        return FailureOf(lock_.error());
    }
    if (std::optional<Problem> problem = FindWaitingProblem(kNotBegun)) {
        return BeginFailure{std::move(*problem), ExitStatus::kWaits};
    }
    const ChangePlan plan{EntryKind::kApply, JournalSteps(steps), restarts};
    if (const int error = BeginEntry(plan, device); error != 0) {
        return FailureOf(error);
    }
    Expect();
    if (std::optional<BeginFailure> failure = Guard()) {
        change_.Discard();
        return failure;
    }
    if (const int error = change_.Advance(EntryState::kApplying); error != 0) {
        change_.Discard();
        return FailureOf(error);
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
        return FailureOf(error);
    }
    GuardianFacts facts;
    if (std::optional<Problem> problem = confirmation_.guard->Start(change_.entry().id, facts)) {
        return BeginFailure{std::move(*problem)};
    }
    change_.RecordGuardian(facts);
    return std::nullopt;
}

EntryState JournalRecord::LastState() const {
    const bool waits = confirmation_.guard != nullptr && !confirmation_.is_asked;
    return waits ? EntryState::kWaiting : EntryState::kConfirmed;
}

std::optional<Problem> JournalRecord::Flush() {
    return ProblemOf("apply: the files could not be written to disk", change_.FlushFiles());
}

std::optional<Problem> JournalRecord::Finish() {
    const int error = change_.RecordFiles();
    if (LastState() == EntryState::kWaiting) {
        const int64_t window = confirmation_.window_seconds * kMilliseconds;
        change_.RecordWindow({confirmation_.window_seconds, MillisecondsSinceBoot() + window});
    }
    return ProblemOf("apply: the change could not be recorded",
                     error != 0 ? error : change_.Advance(LastState()));
}

ExitStatus JournalRecord::TakeBack(const Device& device, Report& report) {
    if (change_.entry().needs_confirmation()) {
        change_.RecordTakingBack(std::string(kCauseFailure), false);
    }
    taken_back_ = PutBackOpen(change_, {}, device, report);
    return taken_back_.is_whole() ? ExitStatus::kFailed : ExitStatus::kPartlyBack;
}

}  // namespace velkctl
