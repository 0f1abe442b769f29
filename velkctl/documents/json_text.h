// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// json_text.h - reads a JSON text, with the places of its errors.
#ifndef VELKCTL_DOCUMENTS_JSON_TEXT_H_
#define VELKCTL_DOCUMENTS_JSON_TEXT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// A character of a text. Both numbers begin with 1.
struct TextPlace {
    size_t line;
    size_t column;

    bool operator==(const TextPlace&) const = default;
};

struct JsonText {
    std::optional<Json> value{};         // nothing if the text is not valid
    std::optional<TextPlace> error{};    // the first character that is not valid
    std::vector<std::string> doubled{};  // the JSON pointers to members that occur twice
};

// Reads the text. Of a member that occurs twice, the first one is kept. A value that is nested in
// eight others is left out.
JsonText ReadJsonText(std::string_view text);

// Returns the pointer to a member of the object at `pointer`: "/settings/eth0.dns".
std::string MemberPointer(std::string_view pointer, std::string_view name);

}  // namespace velkctl

#endif  // VELKCTL_DOCUMENTS_JSON_TEXT_H_
