// address_values.h - values that are one IPv4 address or mask.
#ifndef VELKCTL_SETTINGS_ADDRESS_VALUES_H_
#define VELKCTL_SETTINGS_ADDRESS_VALUES_H_

#include <cstdint>

#include "velkctl/settings/value_kind.h"

namespace velkctl {

// A dotted-quad text, as it stands in the device's files. What the device holds is shown as it
// stands, address or not; the empty text is shown as none.
class AddressKind final : public ValueKind {
  public:
    // `problem` says what is wrong with an address, as HostAddressProblem() does; `wanted` says in
    // words what it takes, and `example` is one of these.
    constexpr AddressKind(std::string_view wanted, std::string_view example,
                          std::string_view (*problem)(uint32_t address), bool takes_none = false)
        : wanted_(wanted), example_(example), problem_(problem), takes_none_(takes_none) {}

    std::string Wanted() const override;
    std::string Example() const override { return std::string(example_); }
    Parsed Parse(std::span<const std::string> words) const override;
    std::string Print(const Data& data) const override;

  private:
    // What is wrong with the word, behind it in a message; empty when it is taken.
    std::string Problem(const std::string& word) const;

    std::string_view wanted_;
    std::string_view example_;
    std::string_view (*problem_)(uint32_t address);
    bool takes_none_;
};

// Ones in front of zeros, and at least one of them.
constexpr bool IsMask(uint32_t mask) {
    return mask != 0 && (~mask & (~mask + 1)) == 0;
}

// What keeps a number from being a mask; empty when nothing does.
constexpr std::string_view MaskProblem(uint32_t mask) {
    if (IsMask(mask)) {
        return {};
    }
    return mask == 0 ? "is not a mask, as it has no ones"
                     : "is not a mask, as its ones are not contiguous";
}

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_ADDRESS_VALUES_H_
