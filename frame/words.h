// words.h - finds and cuts words in a line.
#ifndef VELK_FRAME_WORDS_H_
#define VELK_FRAME_WORDS_H_

#include <string_view>

namespace velk {

inline bool Contains(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

// Takes the next word off the front of `text`, as scanf(3) "%s" does: leading white space is
// skipped, and the word ends at white space or a NUL. Empty when no word is left.
std::string_view TakeWord(std::string_view& text);

}  // namespace velk

#endif  // VELK_FRAME_WORDS_H_
