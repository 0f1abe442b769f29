// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_words.cpp - reads a shell line as a POSIX shell would.
#include "fuzz/kit/shell_words.h"

namespace fuzz {
namespace {

constexpr std::string_view kMeaningful = "|&;<>()$`\"*?[#~\n";

}  // namespace

std::optional<std::vector<std::string>> ShellWords(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    bool in_word = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\'') {
            quoted = !quoted;
            in_word = true;
        } else if (quoted) {
            word += c;
        } else if (c == ' ') {
            if (in_word) {
                words.push_back(word);
            }
            word.clear();
            in_word = false;
        } else if (c == '\\' && i + 1 < line.size()) {
            word += line[++i];
            in_word = true;
        } else if (kMeaningful.find(c) != std::string_view::npos) {
            return std::nullopt;
        } else {
            word += c;
            in_word = true;
        }
    }
    if (quoted) {
        return std::nullopt;
    }
    if (in_word) {
        words.push_back(word);
    }
    return words;
}

}  // namespace fuzz
