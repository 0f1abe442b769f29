// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_checks.cpp - changes that were begun and are neither finished nor taken back.
#include <string>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"

namespace velkctl {
namespace {

Findings CheckJournalEntry(const StoredEntry& stored) {
    if (!stored.is_interrupted()) {
        return {};
    }
    const Finding about{.subject = "change " + stored.decoded.entry.id, .file = stored.path};
    if (stored.decoded.entry.state == EntryState::kStuck) {
        return {about.Problem("is taken back only in part",
                              "a file or setting could not be put back",
                              "velkctl recover --force; to leave it as it is, "
                              "velkctl recover --keep")};
    }
    return {about.Problem("was interrupted", "it is neither finished nor taken back",
                          "velkctl recover")};
}

}  // namespace

Findings CheckJournal() {
    return FindingsOfEach(ReadJournal().entries, CheckJournalEntry);
}

}  // namespace velkctl
