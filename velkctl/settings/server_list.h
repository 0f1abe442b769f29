// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server_list.h - values that are a list of servers.
#ifndef VELKCTL_SETTINGS_SERVER_LIST_H_
#define VELKCTL_SETTINGS_SERVER_LIST_H_

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// One to three IPv4 addresses, or "none", in slots of 16 bytes.
class ServerListKind final : public ValueKind {
  public:
    std::string_view Type() const override { return "addresses"; }
    std::string Wanted() const override;
    std::string Example() const override { return "192.168.0.1 192.168.0.2"; }
    Parsed Parse(std::span<const std::string> words) const override;
    Parsed Force(std::span<const std::string> words) const override;
    std::string Print(const Data& data) const override;
    nlohmann::ordered_json ToJson(const Data& data) const override;
    Parsed FromJson(const nlohmann::ordered_json& value) const override;
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_SERVER_LIST_H_
