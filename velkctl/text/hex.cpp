// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hex.cpp - data bytes as hex digits and as a hex and text dump.
#include "velkctl/text/hex.h"

#include <algorithm>
#include <cstdio>

namespace velkctl {
namespace {

constexpr size_t kBytesPerLine = 16;

bool IsSeparator(char byte) {
    return byte == ' ' || byte == '\t' || byte == ':';
}

int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

// The bytes may be a secret: problems give their position, not their value.
Parsed NotADigit(size_t at) {
    return Unparsable("character " + std::to_string(at + 1) +
                      " is not a hex digit; give two hex digits for each byte, such as 31:30");
}

Parsed SingleDigit(size_t at) {
    return Unparsable("odd number of hex digits at character " + std::to_string(at + 1) +
                      "; give two hex digits for each byte, such as 31:30");
}

void AppendHexColumns(std::string& dump, std::string_view line) {
    for (size_t i = 0; i < kBytesPerLine; ++i) {
        char column[4] = "   ";
        if (i < line.size()) {
            (void)snprintf(column, sizeof(column), " %02x", static_cast<unsigned char>(line[i]));
        }
        dump.append(i == kBytesPerLine / 2 ? " " : "").append(column);
    }
}

void AppendTextColumn(std::string& dump, std::string_view line) {
    for (const char byte : line) {
        dump.push_back(byte >= ' ' && byte <= '~' ? byte : '.');
    }
}

std::string OffsetColumn(size_t offset) {
    char column[20];
    (void)snprintf(column, sizeof(column), "%08zx", offset);
    return column;
}

}  // namespace

Parsed ParseHex(std::string_view text) {
    Parsed parsed;
    size_t count = 0;
    for (size_t at = 0; at < text.size();) {
        if (IsSeparator(text[at])) {
            ++at;
            continue;
        }
        const int high = DigitValue(text[at]);
        if (high < 0) {
            return NotADigit(at);
        }
        if (at + 1 == text.size() || IsSeparator(text[at + 1])) {
            return SingleDigit(at);
        }
        const int low = DigitValue(text[at + 1]);
        if (low < 0) {
            return NotADigit(at + 1);
        }
        if (count == parsed.data.size()) {
            return Unparsable("more than 512 bytes; give at most 512");
        }
        parsed.data[count++] = static_cast<char>(high * 16 + low);
        at += 2;
    }
    return parsed;
}

bool IsHex(std::string_view text) {
    return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string ToHex(std::string_view bytes) {
    constexpr char kHexDigits[] = "0123456789abcdef";
    std::string digits;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        digits.push_back(kHexDigits[value >> 4U]);
        digits.push_back(kHexDigits[value & 0xfU]);
    }
    return digits;
}

std::string_view UsedBytes(const Data& data) {
    const auto last = std::find_if(data.rbegin(), data.rend(), [](char byte) { return byte != 0; });
    return {data.data(), static_cast<size_t>(data.rend() - last)};
}

std::string Dump(const Data& data) {
    const std::string_view used = UsedBytes(data);
    if (used.empty()) {
        return {};
    }
    std::string dump;
    for (size_t offset = 0; offset < used.size(); offset += kBytesPerLine) {
        const std::string_view line = used.substr(offset, kBytesPerLine);
        dump.append(OffsetColumn(offset)).append(" ");
        AppendHexColumns(dump, line);
        dump.append("  |");
        AppendTextColumn(dump, line);
        dump.append("|\n");
    }
    return dump.append(OffsetColumn(used.size())).append("\n");
}

}  // namespace velkctl
