// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_values.cpp - values that are a text.
#include "velkctl/settings/text_values.h"

#include "velk/request.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/hex.h"
#include "velkctl/text/masking.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// Returns the problem with a text; empty if it is accepted.
std::string TextKind::Problem(std::string_view text) const {
    if (text.ends_with('\r')) {
        return "it ends with CR (carriage return), as in a CR LF file" + Give();
    }
    const std::string_view own_problem = problem_ == nullptr ? "" : problem_(text);
    if (!own_problem.empty()) {
        return std::string(own_problem) + Give();
    }
    const size_t length = text.size();
    if (!takes_length_(length)) {
        return std::to_string(length) + (length == 1 ? " byte given" : " bytes given") + Give();
    }
    if (HasControls(text)) {
        return "control characters, such as the end of a line, are not taken" + Give();
    }
    return {};
}

Parsed TextKind::Parse(std::span<const std::string> words) const {
    if (words.size() == 1 && words.front() == empty_) {
        return {};
    }
    if (const std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(problem + (words.empty() ? "" : ", in quotes if it has blanks"));
    }
    if (words.front() == kNone) {
        // Other settings take 'none'. Here it would be a text of four letters.
        return Unparsable("'none' would be a text here; give '' to clear the setting",
                          ", or --force to set that text");
    }
    return ParseText(words.front());
}

Parsed TextKind::ParseText(std::string_view word) const {
    const std::string text = UnprintedValue(word);
    Parsed parsed;
    parsed.problem = Problem(text);
    if (parsed.ok()) {
        (void)text.copy(parsed.data.data(), parsed.data.size());
    }
    return parsed;
}

Parsed TextKind::FromJson(const nlohmann::ordered_json& value) const {
    if (value == ToJson(Data{})) {
        return {};
    }
    return value.is_string() ? ParseText(value.get<std::string>()) : WrongType(value, "string");
}

std::string TextKind::Print(const Data& data) const {
    return PrintText(data, empty_);
}

std::vector<Meaning> TextKind::Meanings() const {
    return empty_ == kNone ? std::vector<Meaning>{} : std::vector<Meaning>{{empty_, "clears it"}};
}

nlohmann::ordered_json TextKind::ToJson(const Data& data) const {
    if (data[0] == '\0' && empty_ == kNone) {
        return nullptr;
    }
    return PrintText(data, "");
}

std::string_view KeyProblem(std::string_view key) {
    // Copied from the output of get or show, it would replace the key.
    return key == kMask ? "this is the mask that is shown in place of a key" : "";
}

std::string_view WepKeyProblem(std::string_view key) {
    const bool is_hex = key.size() == VELK_WEP_SHORT_HEX_KEY || key.size() == VELK_WEP_LONG_HEX_KEY;
    if (is_hex && !IsHex(key)) {
        return "a key of 10 or 26 bytes consists of hex digits";
    }
    return KeyProblem(key);
}

}  // namespace velkctl
