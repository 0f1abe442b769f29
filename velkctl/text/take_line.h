// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// take_line.h - takes a text apart into its lines.
#ifndef VELKCTL_TEXT_TAKE_LINE_H_
#define VELKCTL_TEXT_TAKE_LINE_H_

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace velkctl {

// Removes the first line from a text that is not empty. Returns it with its newline, if it has one.
inline std::string_view TakeLine(std::string_view& text) {
    const size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(length);
    return line;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_TAKE_LINE_H_
