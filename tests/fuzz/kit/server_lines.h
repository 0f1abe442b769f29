// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server_lines.h - the crontab's lines after a set of the time server.
#ifndef TESTS_FUZZ_KIT_SERVER_LINES_H_
#define TESTS_FUZZ_KIT_SERVER_LINES_H_

#include <string>

#include "fuzz/kit/lines.h"

namespace fuzz {

// Returns the lines as the set joins them: the next line is appended to a line that ends with its
// server.
Texts WithJoins(const Texts& lines);

// Checks that the server alone was put in. `old_line` is one of those above; new ones have no
// newline in their middle.
void CheckServerLine(const std::string& old_line, const std::string& new_line,
                     const std::string& server);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SERVER_LINES_H_
