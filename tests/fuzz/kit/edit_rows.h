// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_rows.h - the sets that edit files, for the fuzz target edits.
#ifndef TESTS_FUZZ_KIT_EDIT_ROWS_H_
#define TESTS_FUZZ_KIT_EDIT_ROWS_H_

#include <cstdint>
#include <vector>

#include "fuzz/kit/edit_files.h"

namespace fuzz {

enum class Value { kText, kByte, kServers, kSchedule };

// A set, the files that it edits, and the texts by which its own lines are known.
struct EditRow {
    uint32_t id;
    bool has_interface;
    Value value;
    std::vector<EditedFile> files;
    bool can_get;
};

// The inputs of the corpus name a row by its place: new rows go to the end.
extern const std::vector<EditRow> kEditRows;

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_EDIT_ROWS_H_
