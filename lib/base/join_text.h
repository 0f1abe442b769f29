// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// join_text.h - joins texts at compile time, so that a line can contain a path of paths.h.
#ifndef VELK_BASE_JOIN_TEXT_H_
#define VELK_BASE_JOIN_TEXT_H_

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace velk {

// A NUL-terminated text with room for its bytes and nothing more.
template <size_t Size>
struct JoinedText {
    constexpr const char* c_str() const { return bytes; }
    constexpr operator std::string_view() const { return {bytes, Size - 1}; }

    char bytes[Size];
};

// Returns the texts one after another, without the NULs between them.
template <size_t... Sizes>
consteval auto JoinText(const char (&... texts)[Sizes]) {
    JoinedText<(Sizes + ...) - sizeof...(Sizes) + 1> joined{};
    char* end = joined.bytes;
    ((end = std::copy_n(texts, Sizes - 1, end)), ...);
    return joined;
}

}  // namespace velk

#endif  // VELK_BASE_JOIN_TEXT_H_
