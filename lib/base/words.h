// words.h - finds and cuts words in a line.
#ifndef VELK_BASE_WORDS_H_
#define VELK_BASE_WORDS_H_

#include <cstddef>
#include <string_view>

namespace velk {

inline bool Contains(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

// isalpha(3) and isalnum(3) in the C locale, whatever locale the host program has set.
constexpr bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsLetterOrDigit(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9');
}

// Looks for the first place at which `word` stands in `line` and sets `position` to it (npos: it
// does not). True when it stands there as a word: at the start of the line or behind a blank, a
// comma or a "#", and in front of a blank, a comma, a semicolon or a newline. A later place is
// never looked at. With `comment_aware` a word behind a "#" does not count. The line must end in a
// newline; std::out_of_range otherwise, when the word is the end of the text.
bool FindWord(std::string_view line, std::string_view word, bool comment_aware, size_t& position);

inline bool HasWord(std::string_view line, std::string_view word, bool comment_aware) {
    size_t position = 0;
    return FindWord(line, word, comment_aware, position);
}

// Takes the next word off the front of `text`, as scanf(3) "%s" does: leading white space is
// skipped, and the word ends at white space or a NUL. Empty when no word is left.
std::string_view TakeWord(std::string_view& text);

}  // namespace velk

#endif  // VELK_BASE_WORDS_H_
