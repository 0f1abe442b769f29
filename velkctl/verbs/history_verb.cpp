// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// history_verb.cpp - the verb that lists the changes in the journal.
#include <algorithm>
#include <string>

#include "velkctl/cli/verbs.h"
#include "velkctl/files/pager.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/journal_entries.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// "k7f2  2026-11-22 14:02:11  undo of p3xv  done", and its settings
std::string TextOf(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    std::string text = entry.id + "  ";
    if (stored.is_whole() || stored.decoded.health == EntryHealth::kLater) {
        text.append(LocalTime(entry.time)).append("  ");
    }
    if (stored.is_whole()) {
        text.append(NameOf(entry.kind)).append(entry.undoes.empty() ? "" : " of ");
        text.append(entry.undoes).append("  ");
    }
    return text.append(StateText(stored)).append("\n").append(StepLines(entry));
}

}  // namespace

ExitStatus RunHistory(const Invocation& invocation, Report& report) {
    JournalListing listing = ReadJournal();
    if (listing.error != 0) {
        report.Complain(JournalProblem("history: the journal cannot be read", listing.error));
        return ExitStatus::kFailed;
    }
    std::ranges::reverse(listing.entries);
    std::string text;
    Json changes = Json::array();
    for (const StoredEntry& stored : listing.entries) {
        text.append(TextOf(stored));
        changes.push_back(EntryInJson(stored));
    }
    if (!report.is_json()) {
        invocation.no_pager ? report.Text(text) : PrintPaged(text);
    }
    if (listing.entries.empty()) {
        report.Inform("no changes\n");
    }
    report.Member("changes", std::move(changes));
    return ExitStatus::kDone;
}

}  // namespace velkctl
