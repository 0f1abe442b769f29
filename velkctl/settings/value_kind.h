// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_kind.h - one form that the values of settings have.
#ifndef VELKCTL_SETTINGS_VALUE_KIND_H_
#define VELKCTL_SETTINGS_VALUE_KIND_H_

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/text/data_bytes.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

// The meaning of a value, in words.
struct Meaning {
    std::string_view value;
    std::string_view words;
};

// Converts a value between words and data bytes. Parse() accepts the text that Print() returns for
// a value of its own.
class ValueKind {
  public:
    // Returns a word for programs that choose an input field by it. docs/json.md has the list.
    virtual std::string_view Type() const = 0;

    // Returns the accepted values: "an IPv4 address such as 192.168.0.1, or none".
    virtual std::string Wanted() const { return {}; }

    // Returns one value as it is written in a shell; empty for a kind that can only be read.
    virtual std::string Example() const { return {}; }

    // A kind that has no Parse() of its own is for settings that can only be read. If a kind is
    // used for secrets, its problems never repeat the words.
    virtual Parsed Parse(std::span<const std::string> words) const;

    // Like Parse(), but also accepts values that Parse() refuses, if they fit the form.
    virtual Parsed Force(std::span<const std::string> words) const;

    // Returns the data bytes of a value of ToJson(). Its texts have no NUL.
    virtual Parsed FromJson(const nlohmann::ordered_json& value) const;

    // Returns one line without its end, with control characters escaped.
    virtual std::string Print(const Data& data) const = 0;

    // Returns the values, or the first words of them, in the order people look for them; empty if
    // there are too many to name.
    virtual std::vector<std::string> Values() const { return {}; }

    // Returns the meaning of each of Values() that needs one.
    virtual std::vector<Meaning> Meanings() const { return {}; }

    // Returns who defines the meaning of values that velkctl does not know; empty if it knows all.
    virtual std::string_view Coding() const { return {}; }

    // Returns the value for programs: the text of Print(), and null in place of none. All other
    // values of a kind have one JSON type.
    virtual nlohmann::ordered_json ToJson(const Data& data) const;

  protected:
    constexpr ValueKind() = default;
    ~ValueKind() = default;

    // Returns the end of a problem, with the accepted values: "; give on or off".
    std::string Give() const { return "; give " + Wanted(); }

    // Returns the problem with words that are not exactly one; empty if they are.
    std::string OneWordProblem(std::span<const std::string> words) const;

    // Returns the problem of a JSON value of another type: "its JSON type is number, not string;
    // give on or off".
    Parsed WrongType(const nlohmann::ordered_json& value, std::string_view type) const;
};

// The word for an empty value, unless a kind has its own.
inline constexpr std::string_view kNone = "none";

// The word for a setting that is switched off.
inline constexpr std::string_view kOff = "off";

// Returns the text in the data bytes, which ends at its NUL or with them; `empty` for the empty
// one.
std::string PrintText(const Data& data, std::string_view empty);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_VALUE_KIND_H_
