// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// terminal_line.h - escapes text for safe output on a terminal.
#ifndef SANDBOX_PROCESS_TERMINAL_LINE_H_
#define SANDBOX_PROCESS_TERMINAL_LINE_H_

#include <string>
#include <string_view>

namespace sandbox {

// Returns the text as one line. Tabs and printable characters of the locale are unchanged. Every
// other byte, for example of an escape sequence or a line end, becomes an escape such as \x1b.
// main() sets the locale.
std::string TerminalLine(std::string_view text);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_TERMINAL_LINE_H_
