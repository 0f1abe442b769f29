// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_locale.h - the locale in which the tools of a shell line read their texts.
#ifndef VELK_IDENTITY_TOOL_LOCALE_H_
#define VELK_IDENTITY_TOOL_LOCALE_H_

#include <string_view>

namespace velk {

// Returns the name of that locale from the environment of the host program, see locale(7); "C" if
// the environment names none.
std::string_view ToolLocale();

// Returns true if tools read the escaped form of `text` as `text`. In encodings such as Shift_JIS,
// GBK and Big5 a byte above 0x7f and the backslash after it are one character: the escaped
// character would then end the command of sed(1). C, POSIX and UTF-8 have no such characters.
bool KeepsEscapes(std::string_view locale, std::string_view text);

}  // namespace velk

#endif  // VELK_IDENTITY_TOOL_LOCALE_H_
