// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_kind.cpp - one form that the values of settings have.
#include "velkctl/settings/value_kind.h"

#include <cstring>

#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {

std::string ValueKind::OneWordProblem(std::span<const std::string> words) const {
    if (words.empty()) {
        return "no value given" + Give();
    }
    return words.size() == 1 ? "" : std::to_string(words.size()) + " values given" + Give();
}

Parsed ValueKind::Parse(std::span<const std::string> /*words*/) const {
    return Unparsable("cannot be set, only read");
}

Parsed ValueKind::Force(std::span<const std::string> words) const {
    Parsed parsed;
    if (words.empty()) {
        return Unparsable(OneWordProblem(words));
    }
    if (words.size() > 1) {
        return Unparsable(std::to_string(words.size()) +
                          " values given; give one, in quotes if it has blanks");
    }
    if (words.front().size() > parsed.data.size()) {
        return Unparsable(std::to_string(words.front().size()) + " bytes given; give at most 512");
    }
    (void)words.front().copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

nlohmann::ordered_json ValueKind::ToJson(const Data& data) const {
    const std::string text = Print(data);
    return text == kNone ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

Parsed ValueKind::FromJson(const nlohmann::ordered_json& value) const {
    if (!value.is_null() && !value.is_string()) {
        return WrongType(value, "string");
    }
    const std::string word = value.is_null() ? std::string(kNone) : value.get<std::string>();
    return Parse({&word, 1});
}

Parsed ValueKind::WrongType(const nlohmann::ordered_json& value, std::string_view type) const {
    std::string problem = "its JSON type is ";
    return Unparsable(problem.append(value.type_name()).append(", not ").append(type) + Give());
}

std::string PrintText(const Data& data, std::string_view empty) {
    const std::string_view text(data.data(), strnlen(data.data(), data.size()));
    return text.empty() ? std::string(empty) : PrintableValue(text);
}

}  // namespace velkctl
