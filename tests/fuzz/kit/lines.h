// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lines.h - splits and searches texts.
#ifndef TESTS_FUZZ_KIT_LINES_H_
#define TESTS_FUZZ_KIT_LINES_H_

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

using Texts = std::vector<std::string>;

// Returns the text's parts between lines of four dashes.
Texts Sections(std::string_view text);

// Removes the first line and its newline from the text and returns the line.
std::string TakeLine(std::string_view& text);

Texts Lines(std::string_view text);

bool Has(std::string_view line, std::string_view text);

// True if the text consists of these characters, or is empty.
bool IsOf(std::string_view text, std::string_view characters);

inline constexpr char kDigits[] = "0123456789";

// Returns the text before the first NUL.
std::string TextIn(const std::string& data);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_LINES_H_
