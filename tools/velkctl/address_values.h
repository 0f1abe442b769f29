// address_values.h - values that are one IPv4 address or mask.
#ifndef VELKCTL_ADDRESS_VALUES_H_
#define VELKCTL_ADDRESS_VALUES_H_

#include <cstdint>

#include "velkctl/value_kind.h"

namespace velkctl {

// A dotted-quad text, as it stands in the device's files. What the device holds is shown as it
// stands, address or not; the empty text is shown as none.
class AddressKind final : public ValueKind {
  public:
    // `wanted` says in words what `takes` takes, and `example` is one of these.
    constexpr AddressKind(std::string_view wanted, std::string_view example,
                          bool (*takes)(uint32_t address), bool takes_none = false)
        : wanted_(wanted), example_(example), takes_(takes), takes_none_(takes_none) {}

    std::string Wanted() const override;
    std::string Example() const override { return std::string(example_); }
    Parsed Parse(std::span<const std::string> words) const override;
    std::string Print(const Data& data) const override;

  private:
    std::string_view wanted_;
    std::string_view example_;
    bool (*takes_)(uint32_t address);
    bool takes_none_;
};

// An address that an interface or a router can have.
constexpr bool IsHostAddress(uint32_t address) {
    const uint32_t first = address >> 24U;
    return first != 0 && first != 127 && first < 224;
}

// Ones in front of zeros, and at least one of them.
constexpr bool IsMask(uint32_t mask) {
    return mask != 0 && (~mask & (~mask + 1)) == 0;
}

}  // namespace velkctl

#endif  // VELKCTL_ADDRESS_VALUES_H_
