// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// address_values.h - values that are one IPv4 address or mask.
#ifndef VELKCTL_SETTINGS_ADDRESS_VALUES_H_
#define VELKCTL_SETTINGS_ADDRESS_VALUES_H_

#include <cstdint>

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A dotted-quad text, as in the device's files. Print() shows the device's text unchanged, also if
// it is no address; the empty text as none.
class AddressKind final : public ValueKind {
  public:
    // `problem` returns the problem with an address, as HostAddressProblem() does; `wanted` names
    // the values that it accepts, and `example` is one of them. `short_form` is another form with
    // its meaning, and `in_full` returns the address of such a word, and any other word unchanged.
    constexpr AddressKind(std::string_view wanted, std::string_view example,
                          std::string_view (*problem)(uint32_t address), bool takes_none = false,
                          Meaning short_form = {},
                          std::string (*in_full)(const std::string& word) = nullptr)
        : wanted_(wanted),
          example_(example),
          problem_(problem),
          takes_none_(takes_none),
          short_form_(short_form),
          in_full_(in_full) {}

    std::string_view Type() const override { return "address"; }
    std::string Wanted() const override;
    std::string Example() const override { return std::string(example_); }
    Parsed Parse(std::span<const std::string> words) const override;
    std::vector<Meaning> Meanings() const override;
    std::string Print(const Data& data) const override;

  private:
    // Returns the problem with the word, to follow it in a message; empty if it is accepted.
    std::string Problem(const std::string& word) const;

    std::string_view wanted_;
    std::string_view example_;
    std::string_view (*problem_)(uint32_t address);
    bool takes_none_;
    Meaning short_form_;
    std::string (*in_full_)(const std::string& word);
};

// Returns the mask of a prefix length, "24" or "/24", and any other word unchanged. A mask may
// follow the slash, too.
std::string MaskOfPrefix(const std::string& word);

// True if the ones come before the zeros, and there is at least one of them.
constexpr bool IsMask(uint32_t mask) {
    return mask != 0 && (~mask & (~mask + 1)) == 0;
}

// Returns the reason why a number is not a mask; empty if it is one.
constexpr std::string_view MaskProblem(uint32_t mask) {
    if (IsMask(mask)) {
        return {};
    }
    return mask == 0 ? "is not a mask: it has no ones" : "is not a mask: a zero precedes a one";
}

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_ADDRESS_VALUES_H_
