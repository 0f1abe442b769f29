// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// coded_values.cpp - values that are one byte out of a table.
#include "velkctl/settings/coded_values.h"

#include <algorithm>

#include "lib/base/find_row.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr size_t kLongestListing = 3;  // more numbers than this are listed as "1 to 13"

}  // namespace

bool CodedKind::has_names() const {
    return std::any_of(values_.begin(), values_.end(),
                       [](const CodedValue& value) { return !value.name.empty(); });
}

bool CodedKind::takes_numbers() const {
    return std::any_of(values_.begin(), values_.end(),
                       [](const CodedValue& value) { return value.name.empty(); });
}

bool CodedKind::Matches(const CodedValue& value, std::string_view word) const {
    return (!value.name.empty() && word == value.name) ||
           (takes_numbers() && word == std::to_string(value.code));
}

// "100-full", "4", or "2 (wep)" where both are taken.
std::string CodedKind::WordFor(const CodedValue& value) const {
    if (!takes_numbers()) {
        return std::string(value.name);
    }
    const std::string number = std::to_string(value.code);
    return value.name.empty() ? number : number + " (" + std::string(value.name) + ")";
}

std::string_view CodedKind::Type() const {
    if (Values() == std::vector<std::string>{"on", "off"}) {
        return "switch";
    }
    return has_names() ? "choice" : "number";
}

std::string CodedKind::Wanted() const {
    if (!has_names() && values_.size() > kLongestListing) {
        return "a number from " + WordFor(values_.front()) + " to " + WordFor(values_.back());
    }
    std::vector<std::string> words;
    for (const CodedValue& value : values_) {
        words.push_back(WordFor(value));
    }
    return OneOf(words);
}

std::string CodedKind::CodingNote() const {
    return coding_.empty() ? "" : std::string(coding_).append("; ");
}

Parsed CodedKind::Parse(std::span<const std::string> words) const {
    if (std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(std::move(problem));
    }
    const std::string& word = words.front();
    const auto value = std::find_if(values_.begin(), values_.end(),
                                    [&](const CodedValue& known) { return Matches(known, word); });
    if (value == values_.end()) {
        return Unparsable(Quoted(word) + " is not valid" +
                          DidYouMean(word, Values(), CodingNote() + "give " + Wanted()));
    }
    Parsed parsed;
    parsed.data[0] = static_cast<char>(value->code);
    return parsed;
}

const CodedValue* CodedKind::Find(uint8_t code) const {
    return velk::FindRow(values_, code, &CodedValue::code);
}

Parsed CodedKind::Force(std::span<const std::string> words) const {
    Parsed parsed = Parse(words);
    if (parsed.ok() || words.size() != 1) {
        return parsed;
    }
    if (const std::optional<uint8_t> code = ParseNumber<uint8_t>(words.front())) {
        parsed.problem.clear();
        parsed.data[0] = static_cast<char>(*code);
    }
    return parsed;
}

std::vector<std::string> CodedKind::Values() const {
    std::vector<std::string> values;
    for (const CodedValue& value : values_) {
        values.push_back(value.name.empty() ? std::to_string(value.code) : std::string(value.name));
    }
    return values;
}

std::vector<Meaning> CodedKind::Meanings() const {
    std::vector<Meaning> meanings;
    for (const CodedValue& value : values_) {
        if (!value.meaning.empty()) {
            meanings.push_back({value.name, value.meaning});
        }
    }
    return meanings;
}

std::string CodedKind::Print(const Data& data) const {
    const auto code = static_cast<uint8_t>(data[0]);
    const CodedValue* value = Find(code);
    return value == nullptr || value->name.empty() ? std::to_string(code)
                                                   : std::string(value->name);
}

nlohmann::ordered_json CodedKind::ToJson(const Data& data) const {
    const auto code = static_cast<uint8_t>(data[0]);
    return has_names() ? nlohmann::ordered_json(Print(data)) : nlohmann::ordered_json(code);
}

Parsed CodedKind::FromJson(const nlohmann::ordered_json& value) const {
    if (!has_names() && value.is_number_float()) {
        return Unparsable(value.dump() + " is not a whole number" + Give());
    }
    if (has_names() ? !value.is_string() : !value.is_number_integer()) {
        return WrongType(value, has_names() ? "string" : "number");
    }
    const std::string word = has_names() ? value.get<std::string>() : value.dump();
    return Parse({&word, 1});
}

}  // namespace velkctl
