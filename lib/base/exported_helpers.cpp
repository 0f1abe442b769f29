// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exported_helpers.cpp - functions of the public headers that the library itself does not use.
#include <cstddef>
#include <cstdint>
#include <string>

#include "lib/base/shell.h"
#include "lib/base/words.h"
#include "velk/frame.h"
#include "velk/ipconf.h"

using namespace velk;

unsigned isStrNum(const char* text) {
    if (text == nullptr) {
        return 1;
    }
    for (; *text != '\0'; ++text) {
        if (*text < '0' || *text > '9') {
            return 0;
        }
    }
    return 1;
}

bool IsSearchString(const std::string& line, const char* word, uint32_t& pos, bool comment_flag) {
    if (word == nullptr) {
        return false;
    }
    pos = static_cast<uint32_t>(line.find(word));  // set even if FindWord() throws
    size_t position = 0;
    return FindWord(line, word, comment_flag, position);
}

bool IsSearchWord(const std::string& line, const char* word, uint32_t& pos) {
    if (word == nullptr) {
        return false;
    }
    const size_t position = line.find(word);
    pos = static_cast<uint32_t>(position);
    return position != std::string::npos && line.find('#') >= position;
}

int FileCopyAndDelete(const std::string& source, const std::string& target) {
    const CommandLine copying = CopyingLine(source, target);
    const int copied = copying.Run();
    if (!copying.fits()) {
        return copied;  // never remove an edit that could not even be tried
    }
    return RemovingLine(source).Run();
}
