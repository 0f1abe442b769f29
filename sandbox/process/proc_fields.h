// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proc_fields.h - reads the labelled lines of files in /proc.
#ifndef SANDBOX_PROCESS_PROC_FIELDS_H_
#define SANDBOX_PROCESS_PROC_FIELDS_H_

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace sandbox {

// Returns the text after "LABEL:" and blanks, or an empty text if the file has no such line.
std::string ProcField(const std::string& path, const std::string& label);

// Returns the number at the start of the text, or nothing if there is none or it does not fit.
template <typename Number>
std::optional<Number> FirstNumber(std::string_view text, int base = 10) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PROC_FIELDS_H_
