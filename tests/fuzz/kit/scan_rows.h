// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scan_rows.h - the gets that read files and tools' output, for the fuzz target scans.
#ifndef TESTS_FUZZ_KIT_SCAN_ROWS_H_
#define TESTS_FUZZ_KIT_SCAN_ROWS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/kit/answer.h"
#include "fuzz/kit/lines.h"

namespace fuzz {

inline constexpr char kRoutes[] = "/tmp/routes";  // in the place of /proc/net/route

// The rule that holds for answers from texts in any form.
enum class Form {
    kText,     // a part of a line of a source
    kGateway,  // an address, or nothing
    kByte,     // 1 to `highest`
    kSchedule,
    kServers
};

// A get and its sources: paths of files, or names of tools that print the text.
struct ScanRow {
    uint32_t id;
    bool has_interface;
    std::vector<std::string> sources;
    Form form;
    char highest;
    std::optional<Answer> (*expected)(const std::string& interface, const Texts& texts);
};

// The inputs of the corpus name a row by its place: new rows go to the end.
extern const std::vector<ScanRow> kScanRows;

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SCAN_ROWS_H_
