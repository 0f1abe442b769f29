// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// data_area.h - reads and writes the fixed byte fields of requests and records within their bounds.
#ifndef VELK_BASE_DATA_AREA_H_
#define VELK_BASE_DATA_AREA_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "velk/request.h"

namespace velk {

// Returns the text in a fixed field: up to its NUL, or the whole field if it has none.
template <size_t kSize>
std::string_view FieldText(const char (&field)[kSize]) {
    return {field, strnlen(field, kSize)};
}

// Copies a text into a fixed field, cut so that a NUL always follows it.
template <size_t kSize>
void PutFieldText(char (&field)[kSize], std::string_view text) {
    const size_t length = text.copy(field, kSize - 1);
    field[length] = '\0';
}

// Writes a text into a response's data area, cut so that a NUL always follows it.
inline void PutText(char* out, std::string_view text) {
    PutFieldText(*reinterpret_cast<char(*)[VELK_DATA_SIZE]>(out), text);
}

// Writes 12 upper-case hexadecimal digits without separators, and a NUL.
void PutMac(char* out, const uint8_t (&mac)[6]);

}  // namespace velk

#endif  // VELK_BASE_DATA_AREA_H_
