// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_values.h - values that are a text.
#ifndef VELKCTL_SETTINGS_TEXT_VALUES_H_
#define VELKCTL_SETTINGS_TEXT_VALUES_H_

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A text that ends at its NUL or with the data area. Secrets are of this kind: no problem repeats
// the text or a part of it.
class TextKind final : public ValueKind {
  public:
    // The empty text is written as `empty`; `wanted` names the lengths that `takes_length` accepts,
    // and `example` is a text as a shell takes it. `problem` returns any other problem with a text,
    // without repeating it.
    constexpr TextKind(std::string_view empty, std::string_view wanted, std::string_view example,
                       bool (*takes_length)(size_t length),
                       std::string_view (*problem)(std::string_view text) = nullptr)
        : empty_(empty),
          wanted_(wanted),
          example_(example),
          takes_length_(takes_length),
          problem_(problem) {}

    std::string_view Type() const override { return "text"; }
    std::string Wanted() const override { return std::string(wanted_); }
    std::string Example() const override { return std::string(example_); }
    Parsed Parse(std::span<const std::string> words) const override;
    // The word that clears it, if "none" does not.
    std::vector<Meaning> Meanings() const override;
    std::string Print(const Data& data) const override;
    nlohmann::ordered_json ToJson(const Data& data) const override;
    // A text is taken as it is: "none" has four letters here.
    Parsed FromJson(const nlohmann::ordered_json& value) const override;

  private:
    Parsed ParseText(std::string_view word) const;
    std::string Problem(std::string_view text) const;

    std::string_view empty_;
    std::string_view wanted_;
    std::string_view example_;
    bool (*takes_length_)(size_t length);
    std::string_view (*problem_)(std::string_view text);
};

// Return the problem with the text of a key other than its length, without a part of the key; empty
// if none.
std::string_view KeyProblem(std::string_view key);
std::string_view WepKeyProblem(std::string_view key);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_TEXT_VALUES_H_
