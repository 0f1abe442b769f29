// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lines.cpp - splits and searches texts.
#include "fuzz/kit/lines.h"

#include <algorithm>

namespace fuzz {

Texts Sections(std::string_view text) {
    constexpr std::string_view kMark = "\n----\n";
    Texts sections;
    for (size_t end = 0; (end = text.find(kMark)) != std::string_view::npos;) {
        sections.emplace_back(text.substr(0, end + 1));
        text.remove_prefix(end + kMark.size());
    }
    sections.emplace_back(text);
    return sections;
}

std::string TakeLine(std::string_view& text) {
    const std::string line(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

Texts Lines(std::string_view text) {
    Texts lines;
    while (!text.empty()) {
        lines.push_back(TakeLine(text));
    }
    return lines;
}

bool Has(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

bool IsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

std::string TextIn(const std::string& data) {
    return data.substr(0, data.find('\0'));
}

}  // namespace fuzz
