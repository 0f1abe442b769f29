// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// words.h - finds and cuts words in a line.
#ifndef VELK_BASE_WORDS_H_
#define VELK_BASE_WORDS_H_

#include <cstddef>
#include <string_view>

namespace velk {

inline bool Contains(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

// Like isalpha(3) and isalnum(3) in the C locale; the host program may have set another.
constexpr bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsLetterOrDigit(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9');
}

// Sets `position` to the first place of `word` in `line`, npos if there is none. Returns true if it
// is a word there: at the start of the line or after a blank, a comma or a "#", and before a blank,
// a comma, a semicolon or a newline. Later places are ignored. With `comment_aware` a word after a
// "#" does not count. The line must end in a newline: throws std::out_of_range if the text ends
// with the word.
bool FindWord(std::string_view line, std::string_view word, bool comment_aware, size_t& position);

inline bool HasWord(std::string_view line, std::string_view word, bool comment_aware) {
    size_t position = 0;
    return FindWord(line, word, comment_aware, position);
}

// Removes the next word from the front of `text`, like scanf(3) "%s": leading white space is
// skipped, and the word ends at white space or a NUL. Returns an empty text if no word is left.
std::string_view TakeWord(std::string_view& text);

}  // namespace velk

#endif  // VELK_BASE_WORDS_H_
