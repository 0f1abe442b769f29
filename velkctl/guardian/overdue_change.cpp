// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// overdue_change.cpp - settles the last change before the work of a run.
#include "velkctl/guardian/overdue_change.h"

#include <optional>
#include <string>

#include "velkctl/call/device.h"
#include "velkctl/changes/revert.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/guardian/news.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/waiting_change.h"

namespace velkctl {
namespace {

bool IsLeft(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    return stored.is_interrupted() && entry.needs_confirmation() &&
           entry.state != EntryState::kStuck && IsOverdue(entry) && !HasGuardian(entry);
}

bool IsUntold(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    const bool is_taken_back =
        entry.state == EntryState::kReverted || entry.state == EntryState::kStuck;
    return stored.is_whole() && !stored.is_in_use && is_taken_back && entry.is_untold;
}

// The limits of the run are for its own work.
void TakeBack(const StoredEntry& stored, Report& report) {
    const JournalEntry& entry = stored.decoded.entry;
    const bool is_same_boot = entry.boot_id == RunningBootId();
    report.Note("change " + entry.id + " of " + ClockTime(entry.time) +
                " was not confirmed; it is put back now");
    const Device device({}, report);
    OpenChange change(stored);
    const RevertOptions options{.cause = std::string(is_same_boot ? kCauseDeadline : kCauseBoot),
                                .is_untold = !report.shows_notes()};
    (void)Revert(change, options, 0, device, report);
}

void Tell(const StoredEntry& stored, Report& report) {
    OpenChange change(stored);
    const std::string news = NewsOf(change.entry());
    change.RecordTakingBack(change.entry().cause, false);
    (void)change.Sync();
    report.Note(news);
}

}  // namespace

void SettleLastChange(Report& report) {
    std::optional<StoredEntry> last = ReadLastEntry();
    if (!last || !(IsLeft(*last) || IsUntold(*last))) {
        return;
    }
    // Another run is about to do the same, or changes settings.
    const JournalLock lock(JournalLock::Use::kAlone, 0);
    if (!lock.is_held()) {
        return;
    }
    last = ReadAgain(*last);
    if (IsLeft(*last)) {
        TakeBack(*last, report);
        last = ReadAgain(*last);
    }
    if (IsUntold(*last) && report.shows_notes()) {
        Tell(*last, report);
    }
}

}  // namespace velkctl
