// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// numbers.h - decimal numbers in texts.
#ifndef VELKCTL_TEXT_NUMBERS_H_
#define VELKCTL_TEXT_NUMBERS_H_

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>

namespace velkctl {

// Returns the number at the start of the text and sets `end` to the position after its last digit;
// nothing if the text begins with none, or with one that the type does not hold. "+1" and " 1"
// begin with none.
template <typename Number>
std::optional<Number> LeadingNumber(std::string_view text, size_t& end, int base = 10) {
    Number number{};
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, base);
    end = static_cast<size_t>(stop - text.data());
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

// Returns the number that the whole text is; nothing if it is anything else or not within the
// limits.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text,
                                  Number least = std::numeric_limits<Number>::min(),
                                  Number most = std::numeric_limits<Number>::max()) {
    size_t end = 0;
    const std::optional<Number> number = LeadingNumber<Number>(text, end);
    const bool is_taken = number && end == text.size() && *number >= least && *number <= most;
    return is_taken ? number : std::nullopt;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_NUMBERS_H_
