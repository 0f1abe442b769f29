// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// raw_values.h - values that are bytes and numbers as the device reports them.
#ifndef VELKCTL_SETTINGS_RAW_VALUES_H_
#define VELKCTL_SETTINGS_RAW_VALUES_H_

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A hardware address, which the library returns as 12 hex digits. It is shown with colons, as other
// tools show it.
class MacAddressKind final : public ValueKind {
  public:
    std::string_view Type() const override { return "mac-address"; }
    std::string Print(const Data& data) const override;
};

// The first data bytes, each as two hex digits.
class HexBytesKind final : public ValueKind {
  public:
    constexpr HexBytesKind(size_t count, std::string_view coding)
        : count_(count), coding_(coding) {}

    std::string_view Type() const override { return "hex"; }
    std::string_view Coding() const override { return coding_; }
    std::string Print(const Data& data) const override;

  private:
    size_t count_;
    std::string_view coding_;
};

// Two 16-bit numbers in the device's byte order, separated by a blank.
class NumberPairKind final : public ValueKind {
  public:
    constexpr explicit NumberPairKind(std::string_view coding) : coding_(coding) {}

    std::string_view Type() const override { return "numbers"; }
    std::string_view Coding() const override { return coding_; }
    std::string Print(const Data& data) const override;
    nlohmann::ordered_json ToJson(const Data& data) const override;

  private:
    std::string_view coding_;
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_RAW_VALUES_H_
