// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// codes.h - the wireless daemon's coded values and the bytes that requests use for them.
#ifndef VELK_WLAN_CODES_H_
#define VELK_WLAN_CODES_H_

#include <cstdint>
#include <span>

namespace velk {

struct Code {
    char byte;       // in a request or response
    uint16_t value;  // in the daemon's record
};

// Writes the byte of a value. Returns LIB_VELK_FAILURE, with nothing written, for a null `out` and
// for a value without a byte.
int PutCode(std::span<const Code> codes, uint16_t value, char* out);

// Stores the value of a byte. Returns LIB_VELK_INVALID_PARAMETER, with nothing stored, for a null
// `in` and for a byte without a value.
int TakeCode(std::span<const Code> codes, const char* in, uint16_t& value);

}  // namespace velk

#endif  // VELK_WLAN_CODES_H_
