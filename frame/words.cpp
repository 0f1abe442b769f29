// words.cpp - finds and cuts words in a line.
#include "frame/words.h"

#include <algorithm>

namespace velk {
namespace {

// isspace(3) in the C locale, whatever locale the host program has set.
constexpr std::string_view kSpace = " \t\n\v\f\r";
constexpr std::string_view kWordEnd(" \t\n\v\f\r\0", 7);

}  // namespace

std::string_view TakeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kWordEnd));
    text.remove_prefix(word.size());
    return word;
}

}  // namespace velk
