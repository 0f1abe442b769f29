// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// host_value.h - values that name a host.
#ifndef VELKCTL_SETTINGS_HOST_VALUE_H_
#define VELKCTL_SETTINGS_HOST_VALUE_H_

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A host name or address, as in a command line of the device: a word that the shell would take for
// more than a name is refused. The empty text is written as none.
class HostKind final : public ValueKind {
  public:
    constexpr HostKind() = default;

    std::string_view Type() const override { return "host"; }
    std::string Wanted() const override;
    std::string Example() const override { return "192.168.0.1"; }
    Parsed Parse(std::span<const std::string> words) const override;
    std::string Print(const Data& data) const override;
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_HOST_VALUE_H_
