// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// escape.cpp - makes a text safe in the replacement of a sed(1) command in single quotes.
#include <string>
#include <string_view>

#include "velk/identity.h"

namespace velk {
namespace {

struct Escape {
    const char* text;
    const char* replacement;
};

// Backslashes come first, so that those of the other rows are not doubled.
constexpr Escape kEscapes[] = {
    {"\\", "\\\\"}, {"&", "\\&"}, {"\"", "\\\""},
    {"'", "'\\''"},  // ends the shell's quotes, gives a quote, and begins them again
    {"/", "\\/"},
};

}  // namespace
}  // namespace velk

using namespace velk;

std::string GetEscapeString(const std::string& text) {
    std::string escaped = text;
    for (const Escape& escape : kEscapes) {
        escaped = ReplaceAll(std::move(escaped), escape.text, escape.replacement);
    }
    return escaped;
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
    if (from.empty()) {
        return text;  // the search would never end
    }
    for (size_t position = text.find(from); position != std::string::npos;
         position = text.find(from, position + to.size())) {
        text.replace(position, from.size(), to);
    }
    return text;
}
