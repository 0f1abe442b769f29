// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// columns.cpp - texts for the columns of a table and for lines of limited width.
#include "velkctl/text/columns.h"

#include <algorithm>

namespace velkctl {
namespace {

constexpr std::string_view kEllipsis = "...";
constexpr size_t kDeeper = 4;

size_t IndentOf(std::string_view line) {
    return std::min(line.find_first_not_of(' '), line.size());
}

// True for "  velkctl get ntp" and "  example: velkctl get ntp".
bool IsCommand(std::string_view line) {
    const size_t indent = IndentOf(line);
    line.remove_prefix(indent);
    return indent > 0 && (line.starts_with("velkctl ") || line.starts_with("example: "));
}

// Returns the length of the words that fit into the width; that of the first one if none does.
size_t FittingLength(std::string_view line, size_t width) {
    const size_t first = std::min(line.find(' ', IndentOf(line)), line.size());
    const size_t blank = line.rfind(' ', width);
    return first > width || blank == std::string_view::npos ? first
                                                            : line.find_last_not_of(' ', blank) + 1;
}

std::string WrappedLine(std::string_view line, size_t width) {
    const std::string margin(IndentOf(line) + kDeeper, ' ');
    std::string lines;
    for (size_t room = width; line.size() > room; room = width - std::min(width, margin.size())) {
        const size_t length = FittingLength(line, room);
        if (length == line.size()) {
            break;
        }
        lines.append(line.substr(0, length)).append("\n").append(margin);
        line.remove_prefix(length);
        line.remove_prefix(IndentOf(line));
    }
    return lines.append(line);
}

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

std::string WrappedWords(std::span<const std::string> words, size_t width, size_t indent) {
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

std::string Wrapped(std::string_view text, size_t width) {
    std::string lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.append(IsCommand(line) ? std::string(line) : WrappedLine(line, width));
        lines.append(line.size() < text.size() ? "\n" : "");
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
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
