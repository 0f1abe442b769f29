// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// revert.cpp - takes back a change that is not finished or not confirmed.
#include "velkctl/changes/revert.h"

#include <optional>
#include <utility>
#include <vector>

#include "velkctl/changes/dhcp_end.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/expected_images.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"

namespace velkctl {
namespace {

// At this start the interfaces have come up with the old files already.
bool IsUpWithOldFiles(const JournalEntry& entry) {
    return !entry.files_back.empty() && entry.files_back == RunningBootId();
}

void RecordCause(OpenChange& change, const RevertOptions& options) {
    if (!options.cause.empty() && change.entry().cause.empty()) {
        change.RecordTakingBack(options.cause, options.is_untold);
    }
}

// Sets `down` to the interfaces that are taken down.
PutBackResult PutFilesBack(OpenChange& change, PutBackOptions options, const Device& device,
                           Report& report, std::vector<std::string>& down) {
    const std::vector<JournalEntry> later = ReadLaterChanges(change.entry().id);
    for (const JournalEntry& entry : later) {
        options.later.push_back(&entry);
    }
    if (!options.at_boot) {
        options.first = [&] { down = EndClientsOf(change.entry(), device, report); };
    }
    return PutBackOpen(change, std::move(options), device, report);
}

std::vector<std::string> InterfacesAfter(const PutBackResult& result, const JournalEntry& entry,
                                         const RevertOptions& options,
                                         const std::vector<std::string>& down) {
    const bool is_needed = result.has_changed || (result.is_whole() && options.restarts);
    return is_needed ? entry.restarts : down;
}

}  // namespace

RevertResult Revert(OpenChange& change, const RevertOptions& options, int wait_seconds,
                    const Device& device, Report& report) {
    RevertResult result;
    if (change.is_not_begun()) {
        CloseTakenBack(change, result.put_back, report);
        return result;
    }
    // The trial comes first: it depends on the files as they were left.
    if (const std::optional<Problem> problem = ExpectSteps(change)) {
        report.Note(*problem);
    }
    const bool may_restart = !options.put_back.at_boot && !IsUpWithOldFiles(change.entry());
    RecordCause(change, options);
    std::vector<std::string> down;
    result.put_back = PutFilesBack(change, options.put_back, device, report, down);
    if (result.put_back.waits_for_daemon && result.put_back.left.empty()) {
        change.RecordFilesBack();
    }
    if (may_restart) {
        const std::vector<std::string> interfaces =
            InterfacesAfter(result.put_back, change.entry(), options, down);
        result.restarts = RestartAll(interfaces, wait_seconds, report);
    }
    if (result.is_locked()) {
        return result;
    }
    if (result.restarts.status != ExitStatus::kDone && !options.closes_if_down) {
        LeaveStuck(change, result.put_back);
        return result;
    }
    CloseTakenBack(change, result.put_back, report);
    return result;
}

}  // namespace velkctl
