// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_lines.h - every shell line that a request makes the library run.
#ifndef TESTS_FUZZ_KIT_SHELL_LINES_H_
#define TESTS_FUZZ_KIT_SHELL_LINES_H_

#include <string>
#include <vector>

namespace fuzz {

// True for the library's own lines, letter by letter, and for the only kind of line that contains a
// request's text: that line must put the text, one of `texts`, into the file unchanged.
bool IsKnownLine(const std::string& line, const std::vector<std::string>& texts);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SHELL_LINES_H_
