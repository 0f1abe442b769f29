// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// escaping.cpp - makes text safe for a terminal.
#include "velkctl/text/escaping.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <system_error>

#include "lib/base/numbers.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/hex.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr size_t kLongestQuote = 40;  // sufficient to recognise a refused word
constexpr size_t kEscapeLength = 4;   // the length of "\\x1b"

void AppendEscape(std::string& text, char byte) {
    text.append("\\x").append(ToHex({&byte, 1}));
}

// One length of UTF-8 characters: the bits of the first byte, and the lowest code that is neither
// written shorter nor a control character.
struct Utf8Form {
    unsigned mask;
    unsigned lead;
    size_t length;
    uint32_t lowest;
};

constexpr std::array<Utf8Form, 4> kUtf8Forms{{
    {0x80U, 0x00U, 1, 0x20},
    {0xe0U, 0xc0U, 2, 0xa0},
    {0xf0U, 0xe0U, 3, 0x800},
    {0xf8U, 0xf0U, 4, 0x10000},
}};
constexpr uint32_t kDelete = 0x7f;
constexpr uint32_t kHighestAscii = 0x7f;
constexpr uint32_t kHighestCode = 0x10ffff;

struct CodeRange {
    uint32_t first;
    uint32_t last;
};

// Default-ignorable characters of Unicode, line separators and annotations. With them a text could
// look like another one or change its order.
constexpr std::array<CodeRange, 17> kUnseen{{
    {0xad, 0xad},
    {0x34f, 0x34f},
    {0x61c, 0x61c},
    {0x115f, 0x1160},
    {0x17b4, 0x17b5},
    {0x180b, 0x180f},
    {0x200b, 0x200f},
    {0x2028, 0x202e},
    {0x2060, 0x206f},
    {0x3164, 0x3164},
    {0xfe00, 0xfe0f},
    {0xfeff, 0xfeff},
    {0xffa0, 0xffa0},
    {0xfff0, 0xfffb},

    {0x1bca0, 0x1bca3},
    {0x1d173, 0x1d17a},
    {0xe0000, 0xe0fff},
}};

bool shows_utf8 = true;

bool IsUnseen(uint32_t code) {
    return std::ranges::any_of(kUnseen, [code](const CodeRange& range) {
        return code >= range.first && code <= range.last;
    });
}

bool IsSurrogate(uint32_t code) {
    return code >= 0xd800 && code <= 0xdfff;
}

bool IsShown(uint32_t code) {
    return code != kDelete && code <= kHighestCode && !IsSurrogate(code) && !IsUnseen(code) &&
           (shows_utf8 || code <= kHighestAscii);
}

// True for a byte of a character other than its first.
bool IsInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

// Returns the length of the first character of the text; 0 if it is no character or not to be
// shown.
size_t CharacterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const auto* form =
        std::find_if(kUtf8Forms.begin(), kUtf8Forms.end(),
                     [first](const Utf8Form& row) { return (first & row.mask) == row.lead; });
    if (form == kUtf8Forms.end() || text.size() < form->length) {
        return 0;
    }
    uint32_t code = first & ~form->mask & 0xffU;
    for (const char byte : text.substr(1, form->length - 1)) {
        const auto value = static_cast<unsigned char>(byte);
        if (!IsInsideCharacter(byte)) {
            return 0;
        }
        code = (code << 6U) | (value & 0x3fU);
    }
    return code >= form->lowest && IsShown(code) ? form->length : 0;
}

// Reads an escape of AppendEscape() at the beginning of the text.
std::optional<char> LeadingEscape(std::string_view text) {
    if (text.size() < kEscapeLength || !text.starts_with("\\x")) {
        return std::nullopt;
    }
    size_t end = 0;
    const auto byte = ParseLeadingNumber<uint8_t>(text.substr(2, kEscapeLength - 2), end, 16);
    const bool is_whole = byte && end == kEscapeLength - 2;
    return is_whole ? std::optional(static_cast<char>(*byte)) : std::nullopt;
}

std::string_view DoubledBackslash(std::string_view /*text*/) {
    return "\\\\";
}

std::string_view ValueBackslash(std::string_view text) {
    return LeadingEscape(text) ? "\\x5c" : "\\";
}

// `backslash` returns the escape of a backslash at the beginning of a text.
std::string Escaped(std::string_view bytes, std::string_view (*backslash)(std::string_view text)) {
    std::string text;
    while (!bytes.empty()) {
        const size_t length = CharacterLength(bytes);
        if (length == 0) {
            AppendEscape(text, bytes.front());
        } else {
            text.append(bytes.front() == '\\' ? backslash(bytes) : bytes.substr(0, length));
        }
        bytes.remove_prefix(std::max<size_t>(length, 1));
    }
    return text;
}

std::string QuotedUpTo(size_t longest, std::string_view word) {
    if (word.size() <= longest) {
        return "'" + Printable(word) + "'";
    }
    size_t end = longest;
    while (end > 0 && IsInsideCharacter(word[end])) {
        --end;
    }
    return "'" + Printable(word.substr(0, end)) + "...'";
}

bool IsControl(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || static_cast<unsigned char>(byte) == kDelete;
}

}  // namespace

void ShowUtf8(bool is_shown) {
    shows_utf8 = is_shown;
}

bool ShowsUtf8() {
    return shows_utf8;
}

std::string Printable(std::string_view bytes) {
    return Escaped(bytes, DoubledBackslash);
}

std::string PrintableValue(std::string_view bytes) {
    return Escaped(bytes, ValueBackslash);
}

std::string UnprintedValue(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::optional<char> byte = LeadingEscape(text);
        bytes.push_back(byte.value_or(text.front()));
        text.remove_prefix(byte ? kEscapeLength : 1);
    }
    return bytes;
}

bool HasControls(std::string_view text) {
    if (std::any_of(text.begin(), text.end(), IsControl)) {
        return true;
    }
    // U+0080 to U+009F
    for (size_t at = text.find('\xc2'); at != std::string_view::npos;
         at = text.find('\xc2', at + 1)) {
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : '\0');
        if (next >= 0x80 && next <= 0x9f) {
            return true;
        }
    }
    return false;
}

std::string Quoted(std::string_view word) {
    return QuotedUpTo(kLongestQuote, word);
}

std::string QuotedWhole(std::string_view word) {
    return QuotedUpTo(VELK_DATA_SIZE, word);
}

std::string QuotedUnlessKey(std::string_view word, bool may_be_key) {
    return may_be_key ? "a word, not repeated here as it may be a key," : Quoted(word);
}

}  // namespace velkctl
