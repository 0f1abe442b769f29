// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// take_line.h - takes a text apart into its lines.
#ifndef VELKCTL_TEXT_TAKE_LINE_H_
#define VELKCTL_TEXT_TAKE_LINE_H_

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace velkctl {

// Returns the first line of a text that is not empty, with its newline, if it has one.
inline std::string_view FirstLine(std::string_view text) {
    return text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
}

// The same; removes the line from the text.
inline std::string_view TakeLine(std::string_view& text) {
    const std::string_view line = FirstLine(text);
    text.remove_prefix(line.size());
    return line;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_TAKE_LINE_H_
