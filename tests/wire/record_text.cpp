// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// record_text.cpp - the bytes of a record as text that is the same on every machine.
#include "wire/record_text.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace wire {
namespace {

constexpr size_t kShortRun = 4;
constexpr size_t kBodyOffset = 4;
constexpr size_t kWepKeyOffset = 48;
constexpr size_t kWepKeySize = 30;

std::string Hex(unsigned value, int digits) {
    char text[16];
    (void)snprintf(text, sizeof(text), "%0*x", digits, value);
    return text;
}

std::string NumberText(std::string_view bytes) {
    if (bytes.size() == sizeof(uint16_t)) {
        uint16_t value = 0;
        memcpy(&value, bytes.data(), sizeof(value));
        return "<" + Hex(value, 4) + ">";
    }
    uint32_t value = 0;
    memcpy(&value, bytes.data(), sizeof(value));
    return "<" + Hex(value, 8) + ">";
}

void AddWord(std::string& text, const std::string& word) {
    text += (text.empty() ? "" : " ") + word;
}

// Adds bytes without numbers.
void AddBytes(std::string& text, std::string_view bytes) {
    std::string word;
    while (!bytes.empty()) {
        const size_t zeros = std::min(bytes.find_first_not_of('\0'), bytes.size());
        if (zeros > kShortRun) {
            if (!word.empty()) {
                AddWord(text, word);
            }
            word.clear();
            AddWord(text, "00*" + std::to_string(zeros));
            bytes.remove_prefix(zeros);
        } else {
            word += Hex(static_cast<unsigned char>(bytes.front()), 2);
            bytes.remove_prefix(1);
        }
    }
    if (!word.empty()) {
        AddWord(text, word);
    }
}

// The numbers in a message with a configuration as its body.
Numbers MessageNumbers() {
    Numbers numbers{{0, 2}};
    for (const size_t offset : {0, 34, 36, 38, 40, 42, 44}) {
        numbers.push_back({kBodyOffset + offset, 2});
    }
    for (size_t key = 0; key < VELK_WEP_KEYS; ++key) {
        numbers.push_back({kBodyOffset + kWepKeyOffset + key * kWepKeySize, 2});
    }
    numbers.push_back({kBodyOffset + 168, 2});
    return numbers;
}

}  // namespace

std::string BytesText(std::string_view bytes, const Numbers& numbers) {
    std::string text;
    size_t at = 0;
    for (const Number& number : numbers) {
        AddBytes(text, bytes.substr(at, number.offset - at));
        AddWord(text, NumberText(bytes.substr(number.offset, number.size)));
        at = number.offset + number.size;
    }
    AddBytes(text, bytes.substr(at));
    return text;
}

std::string RecordText(const _velk_request& record, const Numbers& data) {
    Numbers numbers{{16, 4}, {20, 4}};
    for (const Number& number : data) {
        numbers.push_back({24 + number.offset, number.size});
    }
    return BytesText({reinterpret_cast<const char*>(&record), sizeof(record)}, numbers);
}

std::string MessageText(std::string_view message) {
    return BytesText(message, message.size() == 240 ? MessageNumbers() : Numbers{});
}

}  // namespace wire
