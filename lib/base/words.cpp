// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// words.cpp - finds and cuts words in a line.
#include "lib/base/words.h"

#include <algorithm>
#include <stdexcept>

namespace velk {
namespace {

// The white space of isspace(3) in the C locale; the host program may have set another.
constexpr std::string_view kSpace = " \t\n\v\f\r";
constexpr std::string_view kWordEnd(" \t\n\v\f\r\0", 7);

constexpr std::string_view kWordStarts = " \t,#";   // a word in a line follows one of these
constexpr std::string_view kWordStops = " \t,;\n";  // and one of these follows it

}  // namespace

bool FindWord(std::string_view line, std::string_view word, bool comment_aware, size_t& position) {
    position = line.find(word);
    if (position == std::string_view::npos) {
        return false;
    }
    if (comment_aware && line.find('#') <= position) {
        return false;
    }
    if (position > 0 && kWordStarts.find(line[position - 1]) == std::string_view::npos) {
        return false;
    }
    const size_t end = position + word.size();
    if (end >= line.size()) {
        throw std::out_of_range("basic_string::at");
    }
    return kWordStops.find(line[end]) != std::string_view::npos;
}

std::string_view TakeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kWordEnd));
    text.remove_prefix(word.size());
    return word;
}

}  // namespace velk
