// text_search.cpp - tells whether a line holds a word.
#include <cstdint>
#include <string>

#include "lib/base/words.h"
#include "velk.h"

bool IsSearchString(const std::string& line, const char* word, uint32_t& pos, bool comment_flag) {
    if (word == nullptr) {
        return false;
    }
    pos = static_cast<uint32_t>(line.find(word));  // told even when FindWord() throws
    size_t position = 0;
    return velk::FindWord(line, word, comment_flag, position);
}

bool IsSearchWord(const std::string& line, const char* word, uint32_t& pos) {
    if (word == nullptr) {
        return false;
    }
    const size_t position = line.find(word);
    pos = static_cast<uint32_t>(position);
    return position != std::string::npos && line.find('#') >= position;
}
