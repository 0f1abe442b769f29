// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// columns.cpp - texts for the columns of a table and for lines of limited width.
#include "velkctl/text/columns.h"

#include <algorithm>

namespace velkctl {
namespace {

constexpr std::string_view kEllipsis = "...";

}  // namespace

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string Cut(std::string_view text, size_t width) {
    if (text.size() <= width) {
        return std::string(text);
    }
    const size_t kept = width - std::min(width, kEllipsis.size());
    return std::string(text.substr(0, kept)).append(kEllipsis);
}

std::string InLinesOf(std::span<const std::string> words, size_t width, size_t indent) {
    const std::string margin(indent, ' ');
    std::string lines;
    size_t used = 0;  // columns of the present line
    for (const std::string& word : words) {
        const bool fits = used > 0 && used + 1 + word.size() <= width;
        if (used > 0 && !fits) {
            lines.append("\n");
        }
        lines.append(fits ? " " : margin).append(word);
        used = (fits ? used + 1 : indent) + word.size();
    }
    return lines.append(words.empty() ? "" : "\n");
}

size_t LinesOnScreen(std::string_view text, size_t columns) {
    size_t lines = 0;
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        lines += std::max<size_t>(1, (length + columns - 1) / columns);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

}  // namespace velkctl
