// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// codes.cpp - the wireless daemon's coded values and the bytes that requests use for them.
#include "lib/wlan/codes.h"

#include "velk/request.h"

namespace velk {

int PutCode(std::span<const Code> codes, uint16_t value, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    for (const Code& code : codes) {
        if (code.value == value) {
            out[0] = code.byte;
            return LIB_VELK_SUCCESS;
        }
    }
    return LIB_VELK_FAILURE;
}

int TakeCode(std::span<const Code> codes, const char* in, uint16_t& value) {
    if (in == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    for (const Code& code : codes) {
        if (code.byte == in[0]) {
            value = code.value;
            return LIB_VELK_SUCCESS;
        }
    }
    return LIB_VELK_INVALID_PARAMETER;
}

}  // namespace velk
