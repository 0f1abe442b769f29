// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// word_mutator.cpp - changes a text by the words of its target's dictionary, and lines of it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "support/dice.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;

char Byte(const std::string& digits) {
    return static_cast<char>(std::stoi(digits, nullptr, 16));
}

// Returns the bytes of a word as a dictionary spells it: \\, \" and \xNN.
std::string Unescaped(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes.push_back(text[i]);
        } else if (text[i + 1] == 'x') {
            bytes.push_back(Byte(text.substr(i + 2, 2)));
            i += 3;
        } else {
            bytes.push_back(text[++i]);
        }
    }
    return bytes;
}

std::vector<std::string> ReadWords() {
    std::vector<std::string> words{""};
    std::ifstream file(VELK_FUZZ_DICTIONARY);
    for (std::string line; std::getline(file, line);) {
        const size_t begin = line.find('"');
        const size_t end = line.rfind('"');
        if (!line.starts_with('#') && begin != end) {
            words.push_back(Unescaped(line.substr(begin + 1, end - begin - 1)));
        }
    }
    return words;
}

const std::vector<std::string>& DictionaryWords() {
    static const std::vector<std::string> words = ReadWords();
    return words;
}

// Puts a word into the text, in the place of a few bytes.
void PutWord(std::string& text, Dice& dice) {
    constexpr size_t kMostReplaced = 12;
    const size_t at = dice.Below(text.size() + 1);
    const size_t length = dice.OneIn(2) ? 0 : std::min(dice.Below(kMostReplaced), text.size() - at);
    text.replace(at, length, dice.OneOf(DictionaryWords()));
}

// Doubles a part of the text, or takes it out.
void CopyPart(std::string& text, Dice& dice) {
    const size_t at = dice.Below(text.size());
    const std::string part = text.substr(at, 1 + dice.Below(text.size() - at));
    if (dice.OneIn(2)) {
        text.erase(at, part.size());
    } else {
        text.insert(dice.Below(text.size() + 1), part);
    }
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (size == 0 || dice.OneIn(3)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    std::string text(reinterpret_cast<const char*>(data), size);
    for (size_t changes = 1 + dice.Below(3); changes > 0 && !text.empty(); --changes) {
        if (dice.OneIn(5)) {
            fuzz::CopyPart(text, dice);
        } else {
            fuzz::PutWord(text, dice);
        }
    }
    const size_t length = std::min(text.size(), max_size);
    memcpy(data, text.data(), length);
    return length;
}
