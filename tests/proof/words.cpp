// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// words.cpp - proofs about lib/base/words.h.
#include "lib/base/words.h"

#include "lib/base/words.cpp"
#include "tests/proof/proof.h"

using namespace velk;

namespace {

bool IsOneOf(char c, std::string_view bytes) {
    for (const char byte : bytes) {
        if (byte == c) {
            return true;
        }
    }
    return false;
}

// Written byte by byte from the comment in words.h.
bool IsAt(std::string_view line, std::string_view word, size_t position) {
    if (position + word.size() > line.size()) {
        return false;
    }
    for (size_t i = 0; i < word.size(); ++i) {
        if (line[position + i] != word[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

PROOF(find_word, 8, "a line of up to 6 bytes, a word of up to 2") {
    const std::string_view line = AnyText<6>();
    const std::string_view word = AnyText<2>();
    const bool comment_aware = proof_number(1) == 1;
    size_t position = 0;
    bool is_word = false;
    bool is_thrown = false;
    try {
        is_word = FindWord(line, word, comment_aware, position);
    } catch (...) {
        is_thrown = true;
    }
    proof_claim(position == std::string_view::npos || IsAt(line, word, position),
                "the position is a place of the word");
    const size_t any = proof_number(6);
    proof_claim(!(any < position && any <= line.size() && IsAt(line, word, any)),
                "it is the first place");
    proof_claim(!is_word || position != std::string_view::npos, "npos is no word");
    proof_claim(!is_word || position == 0 || IsOneOf(line[position - 1], " \t,#"),
                "a word follows a blank, a comma or a #");
    proof_claim(!is_word || IsOneOf(line[position + word.size()], " \t,;\n"),
                "a word ends before a blank, ',', ';' or newline");
    proof_claim(!(is_word && comment_aware && any <= position && line[any] == '#'),
                "a word in a comment does not count");
    proof_claim(!is_thrown || position + word.size() == line.size(),
                "only a word at the end throws");
    proof_reached(is_word && position > 0 && word.size() == 2, "a word within the line");
    proof_reached(is_thrown, "a word at the end");
    proof_reached(!is_word && position > 0 && position < line.size(), "a place that is no word");
}

PROOF(take_word, 9, "a text of up to 6 bytes") {
    const std::string_view all = AnyText<6>();
    std::string_view text = all;
    const std::string_view word = TakeWord(text);
    const auto skipped = static_cast<size_t>(word.data() - all.data());
    proof_claim(skipped + word.size() + text.size() == all.size(),
                "white space, word and rest are the text");
    proof_claim(word.data() + word.size() == text.data(), "the rest follows the word");
    const size_t any = proof_number(6);
    proof_claim(any >= word.size() || !IsOneOf(word[any], std::string_view(" \t\n\v\f\r\0", 7)),
                "a word has no white space and no NUL");
    proof_claim(text.empty() || IsOneOf(text.front(), std::string_view(" \t\n\v\f\r\0", 7)),
                "the word is whole");
    proof_claim(any >= skipped || IsOneOf(all[any], " \t\n\v\f\r"), "only white space is skipped");
    proof_reached(word.size() == 3 && word.data() > all.data() && !text.empty(),
                  "a word between others");
    proof_reached(word.empty() && !text.empty(), "a NUL at the front");
}
