// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// revert_verb.cpp - the verb that takes back a change that waits for its confirmation.
#include <algorithm>
#include <string>

#include "lib/base/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/changes/revert.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

ExitStatus ReportResult(const OpenChange& change, const RevertResult& result, Report& report) {
    report.Member("id", change.entry().id);
    report.Member("state", NameOf(change.entry().state));
    const std::string name = NameOfChange(change.entry());
    if (result.is_locked()) {
        return ExitStatus::kLocked;
    }
    if (!result.put_back.left.empty()) {
        report.Complain("revert: " + name + " is put back in part");
        return ExitStatus::kPartlyBack;
    }
    report.Inform(name + " is put back\n");
    return result.restarts.status;
}

// With a journal that cannot be written nothing is done: a confirm could come after it.
ExitStatus TakeBackNow(const StoredEntry& stored, const Invocation& invocation, Report& report) {
    OpenChange change(stored);
    if (change.entry().state == EntryState::kWaiting) {
        change.RecordTakingBack(std::string(kCauseRequest), false);
        if (const int error = change.Advance(EntryState::kReverting); error != 0) {
            report.Complain(JournalProblem("revert: nothing was changed", error));
            return ExitStatus::kFailed;
        }
    }
    const Device device(invocation.limits, report, OnSignal::kFinishCommand);
    const int wait = invocation.limits.wait_seconds;
    const RevertOptions options{.put_back = {.lock_seconds = std::max(wait, kSetSeconds)},
                                .cause = std::string(kCauseRequest)};
    NoteWait(velk::kLockFile, wait, report);
    const StopSignals signals;
    const RevertResult result = Revert(change, options, wait, device, report);
    const ExitStatus status = ReportResult(change, result, report);
    if (const int signal = signals.Pending(); signal != 0) {
        EndInterrupted(signal, "the change was being put back", report);
    }
    return status;
}

}  // namespace

ExitStatus RunRevert(const Invocation& invocation, Report& report) {
    const std::string id = invocation.words.empty() ? "" : invocation.words.front();
    const WaitingEntry found("revert", id, invocation.limits.wait_seconds, report);
    if (!found.is_found()) {
        return found.status();
    }
    const JournalEntry& entry = found.stored().decoded.entry;
    if (entry.state == EntryState::kReverted) {
        report.Member("id", entry.id);
        report.Member("state", NameOf(entry.state));
        report.Inform(NameOfChange(entry) + " is already put back\n");
        return ExitStatus::kDone;
    }
    if (entry.is_closed()) {
        report.Complain(Problem{.message = "revert: " + NameOfChange(entry) + " is confirmed",
                                .remedy = "'velkctl undo " + entry.id + "' takes it back"});
        return ExitStatus::kFailed;
    }
    return TakeBackNow(found.stored(), invocation, report);
}

}  // namespace velkctl
