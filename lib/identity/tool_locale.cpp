// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_locale.cpp - the locale in which the tools of a shell line read their texts.
#include "lib/identity/tool_locale.h"

#include <algorithm>
#include <cstdlib>

namespace velk {
namespace {

// The part of a locale's name between "." and "@": UTF-8 in "de_DE.UTF-8@euro".
std::string_view EncodingOf(std::string_view locale) {
    const size_t dot = locale.find('.');
    return dot == std::string_view::npos ? "" : locale.substr(dot + 1, locale.find('@') - dot - 1);
}

char LowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsSameButForCase(std::string_view text, std::string_view lower) {
    return std::ranges::equal(text, lower, {}, LowerCase);
}

bool HasNoLeadBytes(std::string_view locale) {
    const std::string_view encoding = EncodingOf(locale);
    return locale == "C" || locale == "POSIX" || IsSameButForCase(encoding, "utf-8") ||
           IsSameButForCase(encoding, "utf8");
}

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return (byte & 0x80) == 0; });
}

}  // namespace

std::string_view ToolLocale() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the shell that is started reads it as well
        const char* value = getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

bool KeepsEscapes(std::string_view locale, std::string_view text) {
    return HasNoLeadBytes(locale) || IsAscii(text);
}

}  // namespace velk
