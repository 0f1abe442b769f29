// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// revert.cpp - takes back a change that is not finished or not confirmed.
#include "velkctl/changes/revert.h"

#include <optional>

#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/interface_restart.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"

namespace velkctl {
namespace {

// Returns the status of the last restart that failed. Stops while another program changes settings.
ExitStatus RestartInterfaces(const JournalEntry& entry, const TimeLimits& limits,
                             const Device& device, Report& report) {
    ExitStatus status = ExitStatus::kDone;
    for (const std::string& interface : entry.restarts) {
        const RestartOutcome outcome = RestartInterface(interface, limits, device);
        if (outcome.problem) {
            report.Complain(*outcome.problem);
            status = outcome.status;
        }
        if (status == ExitStatus::kLocked) {
            return status;
        }
    }
    return status;
}

// At this start the interfaces have come up with the old files already.
bool IsUpWithOldFiles(const JournalEntry& entry) {
    return !entry.files_back.empty() && entry.files_back == RunningBootId();
}

void RecordCause(OpenChange& change, const RevertOptions& options) {
    if (!options.cause.empty() && change.entry().cause.empty()) {
        change.RecordTakingBack(options.cause, options.is_untold);
    }
}

}  // namespace

RevertResult Revert(OpenChange& change, const RevertOptions& options, const TimeLimits& limits,
                    const Device& device, Report& report) {
    if (change.entry().state == EntryState::kPrepared) {
        (void)change.Advance(EntryState::kReverted);
        return {};
    }
    // The trial and the DHCP clients come first: both depend on the files as they were left.
    if (const std::optional<Problem> problem = ExpectSteps(change, limits)) {
        report.Note(*problem);
    }
    const bool may_restart = !options.at_boot && !IsUpWithOldFiles(change.entry());
    RecordCause(change, options);
    RevertResult result;
    if (change.entry().state != EntryState::kReverting) {
        (void)change.Advance(EntryState::kReverting);
    }
    if (!options.at_boot) {
        EndClientsOf(change.entry(), device, report);
    }
    result.put_back = PutBackOpen(change, {.skip_daemon = options.at_boot}, device, report);
    if (result.put_back.waits_for_daemon) {
        change.RecordFilesBack();
    }
    const bool restarts = may_restart && (options.restarts || result.put_back.has_changed);
    if (restarts && !result.put_back.is_locked) {
        result.restart = RestartInterfaces(change.entry(), limits, device, report);
    }
    if (!result.is_locked()) {
        CloseTakenBack(change, result.put_back);
    }
    return result;
}

}  // namespace velkctl
