// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pending_verb.cpp - the verb that shows the change that waits for its confirmation.
#include <optional>
#include <string>

#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/journal_entries.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

Json PendingInJson(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    Json object = EntryInJson(stored);
    object["window"] = entry.window.seconds;
    object["seconds_left"] = SecondsLeft(entry);
    object["guarded"] = HasGuardian(entry);
    return object;
}

// Without a guardian, the next run after its time puts the change back.
void NoteMissingGuardian(const JournalEntry& entry, Report& report) {
    if (!HasGuardian(entry)) {
        report.Note(Problem{.message = "no guardian runs for change " + entry.id,
                            .detail = "the next run of velkctl after its time puts it back"});
    }
}

}  // namespace

ExitStatus RunPending(const Invocation& /*invocation*/, Report& report) {
    if (const JournalListing listing = ReadJournal(); listing.error != 0) {
        report.Complain(JournalProblem("pending: the journal cannot be read", listing.error));
        return ExitStatus::kFailed;
    }
    const std::optional<StoredEntry> stored = FindUnconfirmed();
    report.Member("pending", stored ? PendingInJson(*stored) : Json(nullptr));
    if (!stored) {
        report.Inform("no change waits for its confirmation\n");
        return ExitStatus::kDone;
    }
    const Problem problem = ProblemOfUnconfirmed(*stored, "");
    report.Text(problem.detail + "\n" + StepLines(stored->decoded.entry));
    report.Inform(problem.remedy + "\n");
    NoteMissingGuardian(stored->decoded.entry, report);
    return ExitStatus::kDone;
}

}  // namespace velkctl
