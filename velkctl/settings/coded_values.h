// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// coded_values.h - values that are one byte out of a table.
#ifndef VELKCTL_SETTINGS_CODED_VALUES_H_
#define VELKCTL_SETTINGS_CODED_VALUES_H_

#include <array>
#include <cstdint>

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

struct CodedValue {
    uint8_t code;
    std::string_view name{};     // empty if it is written as its number
    std::string_view meaning{};  // if the name does not say it
};

// The first data byte is one of the codes of a table. A code is written by its name. If some
// codes have none, the number of every code is accepted, too.
class CodedKind final : public ValueKind {
  public:
    constexpr explicit CodedKind(std::span<const CodedValue> values, std::string_view coding = "")
        : values_(values), coding_(coding) {}

    // A switch if the values are on and off; else a choice if the table has names, or a number.
    std::string_view Type() const override;
    std::string Wanted() const override;
    std::string Example() const override { return Values().front(); }
    Parsed Parse(std::span<const std::string> words) const override;
    // Accepts also the number of any byte.
    Parsed Force(std::span<const std::string> words) const override;
    std::vector<std::string> Values() const override;
    std::vector<Meaning> Meanings() const override;
    std::string_view Coding() const override { return coding_; }
    // A code that the table does not have is shown as its number.
    std::string Print(const Data& data) const override;
    // A text if the table has names, else a number. The type does not depend on the value.
    nlohmann::ordered_json ToJson(const Data& data) const override;
    Parsed FromJson(const nlohmann::ordered_json& value) const override;

  private:
    bool has_names() const;
    bool takes_numbers() const;
    bool Matches(const CodedValue& value, std::string_view word) const;
    const CodedValue* Find(uint8_t code) const;
    std::string WordFor(const CodedValue& value) const;
    // Returns a clause of a message: who defines the values. Empty if velkctl knows their meaning.
    std::string CodingNote() const;

    std::span<const CodedValue> values_;
    std::string_view coding_;
};

// A table of the numbers from `kFirst` to `kLast`.
template <uint8_t kFirst, uint8_t kLast>
constexpr std::array<CodedValue, kLast - kFirst + 1> NumberTable() {
    std::array<CodedValue, kLast - kFirst + 1> table{};
    uint8_t number = kFirst;
    for (CodedValue& value : table) {
        value.code = number++;
    }
    return table;
}

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_CODED_VALUES_H_
