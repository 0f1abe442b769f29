// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// terminal_line.cpp - escapes text for safe output on a terminal.
#include "sandbox/process/terminal_line.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>

namespace sandbox {
namespace {

void AppendEscape(std::string& text, char byte) {
    char escape[5];
    (void)snprintf(escape, sizeof(escape), "\\x%02x", static_cast<unsigned char>(byte));
    text.append(escape);
}

// Returns the number of bytes of the first character, or 0 if it must be escaped. Characters of
// zero width are escaped: they can hide other characters or reverse their order.
size_t ShownLength(std::string_view text) {
    if (text.front() == '\t') {
        return 1;
    }
    wchar_t character;
    mbstate_t state{};
    const size_t length = mbrtowc(&character, text.data(), text.size(), &state);
    return length <= text.size() && wcwidth(character) > 0 ? length : 0;
}

}  // namespace

std::string TerminalLine(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const size_t length = ShownLength(text);
        if (length == 0) {
            AppendEscape(shown, text.front());
        } else {
            shown.append(text.substr(0, length));
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return shown;
}

}  // namespace sandbox
