// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hex.h - data bytes as hex digits and as a hex and text dump.
#ifndef VELKCTL_TEXT_HEX_H_
#define VELKCTL_TEXT_HEX_H_

#include <string>
#include <string_view>

#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Parses two hex digits for each byte, with optional blanks and colons between the bytes.
Parsed ParseHex(std::string_view text);

// True if the text has only hex digits.
bool IsHex(std::string_view text);

// Returns two hex digits for each byte.
std::string ToHex(std::string_view bytes);

// Returns the bytes up to the last one that is not zero.
std::string_view UsedBytes(const Data& data);

// Returns UsedBytes() as hexdump -C shows them, sixteen a line, with their number on the last line.
// Empty if all are zero.
std::string Dump(const Data& data);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_HEX_H_
