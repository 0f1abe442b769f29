// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// numbers.h - reads a number at the start of a text.
#ifndef VELK_BASE_NUMBERS_H_
#define VELK_BASE_NUMBERS_H_

#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>

namespace velk {

// Returns the number at the start of the text and sets `end` to the position after its last digit.
// Returns no value if the text does not begin with a number that the type holds; "+1" and " 1" do
// not.
template <typename Number>
std::optional<Number> ParseLeadingNumber(std::string_view text, size_t& end, int base = 10) {
    Number number{};
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, base);
    end = static_cast<size_t>(stop - text.data());
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

// Like the function above, for callers that ignore the rest of the text.
template <typename Number>
std::optional<Number> ParseLeadingNumber(std::string_view text, int base = 10) {
    size_t end = 0;
    return ParseLeadingNumber<Number>(text, end, base);
}

}  // namespace velk

#endif  // VELK_BASE_NUMBERS_H_
