// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_case.h - reads one case of the edits ring. README.md documents the format.
#ifndef TESTS_EDITS_EDIT_CASE_H_
#define TESTS_EDITS_EDIT_CASE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "velk.h"

namespace edits {

// A file of the device around one request. A text that is not set means that the file is missing.
struct CaseFile {
    std::string path;  // on the device
    std::optional<std::string> before;
    std::optional<std::string> after;
    std::optional<std::string> copy;  // the edit copy after the request
};

struct EditCase {
    _velk_request request{};
    int result = 0;
    std::vector<CaseFile> files;  // every file that a set may edit, in the case or not
};

// Throws std::runtime_error with "NAME:LINE: " and the mistake if the text is not a well-formed
// case.
EditCase ParseEditCase(const std::string& name, const std::string& text);

EditCase ReadEditCase(const std::filesystem::path& file);

}  // namespace edits

#endif  // TESTS_EDITS_EDIT_CASE_H_
