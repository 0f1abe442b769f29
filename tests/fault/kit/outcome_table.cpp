// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// outcome_table.cpp - counts and prints the outcomes of faults.
#include "fault/kit/outcome_table.h"

#include <cstdio>

namespace fault {
namespace {

int At(const std::map<int, int>& counts, int key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

int At(const std::map<FilesAre, int>& counts, FilesAre key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

}  // namespace

FilesAre Judge(const Reference& reference, const Outcome& outcome) {
    if (!reference.ChangesSomething()) {
        return FilesAre::kNoneToChange;
    }
    if (outcome.files == reference.before && outcome.wireless == reference.wireless_before) {
        return FilesAre::kBefore;
    }
    const Outcome& after = reference.outcome;
    const bool is_done = outcome.files == after.files && outcome.wireless == after.wireless;
    return is_done ? FilesAre::kAfter : FilesAre::kBetween;
}

OutcomeTable& OutcomeTable::Get() {
    static OutcomeTable table;
    return table;
}

void OutcomeTable::Add(const Fault& fault, const Reference& reference, const Outcome& outcome) {
    Row& row = rows_[fault.kind.name];
    ++row.injected;
    ++row.results[outcome.result];
    ++row.files[Judge(reference, outcome)];
}

void OutcomeTable::PrintRow(const std::string& name, const Row& row) {
    const int success = At(row.results, LIB_VELK_SUCCESS);
    const int failure = At(row.results, LIB_VELK_FAILURE);
    printf("| %s | %d | %d | %d | %d | %d | %d | %d |\n", name.c_str(), row.injected, success,
           failure, row.injected - success - failure, At(row.files, FilesAre::kBefore),
           At(row.files, FilesAre::kAfter), At(row.files, FilesAre::kBetween));
}

void OutcomeTable::Print() const {
    if (rows_.empty()) {
        return;
    }
    printf(
        "| Failing call | Faults | answered 0 | answered -1 | answered -4, -5 or -6 "
        "| files as before | as after | between |\n"
        "|---|---|---|---|---|---|---|---|\n");
    Row all;
    for (const Kind& kind : kKinds) {
        const auto found = rows_.find(kind.name);
        if (found == rows_.end()) {
            continue;
        }
        const Row& row = found->second;
        PrintRow(kind.name, row);
        all.injected += row.injected;
        for (const auto& [result, count] : row.results) {
            all.results[result] += count;
        }
        for (const auto& [files, count] : row.files) {
            all.files[files] += count;
        }
    }
    PrintRow("all", all);
    printf("%d requests on their devices, %d faults.\n", requests_, all.injected);
}

}  // namespace fault
