// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// numbers.h - decimal numbers in texts.
#ifndef VELKCTL_TEXT_NUMBERS_H_
#define VELKCTL_TEXT_NUMBERS_H_

#include <limits>
#include <optional>
#include <string_view>

#include "lib/base/numbers.h"

namespace velkctl {

using velk::ParseLeadingNumber;

// Returns the number that the whole text is; nothing if it is anything else or not within the
// limits.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text,
                                  Number least = std::numeric_limits<Number>::min(),
                                  Number most = std::numeric_limits<Number>::max()) {
    size_t end = 0;
    const std::optional<Number> number = ParseLeadingNumber<Number>(text, end);
    const bool is_taken = number && end == text.size() && *number >= least && *number <= most;
    return is_taken ? number : std::nullopt;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_NUMBERS_H_
