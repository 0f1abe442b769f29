// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// record_text.h - the bytes of a record as text that is the same on every machine.
#ifndef TESTS_WIRE_RECORD_TEXT_H_
#define TESTS_WIRE_RECORD_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

#include "velk.h"

namespace wire {

// A number that a record stores in the byte order of the machine.
struct Number {
    size_t offset;
    size_t size;  // 2 or 4
};
using Numbers = std::vector<Number>;

// Returns the bytes as pairs of hexadecimal digits. A number is in angle brackets, its highest
// digit first, and a run of more than four zero bytes is "00*COUNT". The numbers are in rising
// order.
std::string BytesText(std::string_view bytes, const Numbers& numbers);

// A request or a response. `data` are the numbers in its data area.
std::string RecordText(const _velk_request& record, const Numbers& data = {});

// A message to the wireless daemon, with or without a configuration in its body.
std::string MessageText(std::string_view message);

}  // namespace wire

#endif  // TESTS_WIRE_RECORD_TEXT_H_
