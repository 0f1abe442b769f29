// raw_values.h - values that are bytes and numbers as the device reports them.
#ifndef VELKCTL_SETTINGS_RAW_VALUES_H_
#define VELKCTL_SETTINGS_RAW_VALUES_H_

#include "velkctl/settings/value_kind.h"

namespace velkctl {

// The first data bytes, each as two hex digits.
class HexBytesKind final : public ValueKind {
  public:
    constexpr explicit HexBytesKind(size_t count) : count_(count) {}

    std::string Print(const Data& data) const override;

  private:
    size_t count_;
};

// Two 16-bit numbers in the device's byte order, separated by a blank.
class NumberPairKind final : public ValueKind {
  public:
    std::string Print(const Data& data) const override;
    nlohmann::ordered_json ToJson(const Data& data) const override;
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_RAW_VALUES_H_
