// value_kind.h - one form that the values of settings have.
#ifndef VELKCTL_SETTINGS_VALUE_KIND_H_
#define VELKCTL_SETTINGS_VALUE_KIND_H_

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/text/data.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

// What a value stands for, in words.
struct Meaning {
    std::string_view value;
    std::string_view words;
};

// How a value is written in words and lies in the data bytes. What Print() shows of a value that
// Parse() gave, Parse() takes again.
class ValueKind {
  public:
    // What to give, in words: "an IPv4 address such as 192.168.0.1, or none".
    virtual std::string Wanted() const { return {}; }

    // One value as it is written in a shell; empty for a kind that can only be read.
    virtual std::string Example() const { return {}; }

    // A kind that has no Parse() of its own is for settings that can only be read. A problem never
    // repeats the words of a kind that serves for secrets.
    virtual Parsed Parse(std::span<const std::string> words) const;

    // The data bytes of words that Parse() would refuse, as far as they fit the form at all.
    virtual Parsed Force(std::span<const std::string> words) const;

    // One line without its end, safe for a terminal.
    virtual std::string Print(const Data& data) const = 0;

    // The values there are, or the first words of them, in the order people look for them; empty
    // when there are too many to name.
    virtual std::vector<std::string> Values() const { return {}; }

    // Those of Values() that need explaining, and what they mean.
    virtual std::vector<Meaning> Meanings() const { return {}; }

    // The value for programs: what Print() shows, and null for what it shows as none.
    virtual nlohmann::ordered_json ToJson(const Data& data) const;

  protected:
    constexpr ValueKind() = default;
    ~ValueKind() = default;

    // The end of a problem, which says what would be right: "; give on or off".
    std::string Give() const { return "; give " + Wanted(); }

    // The problem with words that are not exactly one; empty when they are.
    std::string OneWordProblem(std::span<const std::string> words) const;
};

// How an empty value is written where nothing else is said.
inline constexpr std::string_view kNone = "none";

// The text in the data bytes, which ends at its NUL or with them; the empty one as `empty`.
std::string PrintText(const Data& data, std::string_view empty);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_VALUE_KIND_H_
