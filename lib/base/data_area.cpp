// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// data_area.cpp - reads and writes the fixed byte fields of requests and records within their
// bounds.
#include "lib/base/data_area.h"

#include <cstdio>

namespace velk {

void PutMac(char* out, const uint8_t (&mac)[6]) {
    constexpr size_t kTextSize = sizeof("0123456789AB");
    (void)snprintf(out, kTextSize, "%02X%02X%02X%02X%02X%02X", mac[0], mac[1], mac[2], mac[3],
                   mac[4], mac[5]);
}

}  // namespace velk
