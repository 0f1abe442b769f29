// lines.h - a text's parts and lines, and what they hold.
#ifndef TESTS_FUZZ_KIT_LINES_H_
#define TESTS_FUZZ_KIT_LINES_H_

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

using Texts = std::vector<std::string>;

// The text's parts between lines of four dashes.
Texts Sections(std::string_view text);

// What stands before the first newline, taken off the front with it.
std::string TakeLine(std::string_view& text);

Texts Lines(std::string_view text);

bool Has(std::string_view line, std::string_view text);

// The text consists of these characters; the empty text does.
bool IsOf(std::string_view text, std::string_view characters);

inline constexpr char kDigits[] = "0123456789";

// What stands in front of the first NUL.
std::string TextIn(const std::string& data);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_LINES_H_
