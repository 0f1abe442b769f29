// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// static_address.h - reads static addresses from /etc/network/interfaces.
#ifndef SANDBOX_HARDWARE_STATIC_ADDRESS_H_
#define SANDBOX_HARDWARE_STATIC_ADDRESS_H_

#include <optional>
#include <string>

#include "sandbox/device/network_control.h"

namespace sandbox {

// Returns the static IPv4 address of an interface, with its gateway if it has one. Returns nothing
// unless the file has its address and netmask.
std::optional<StaticAddress> ReadStaticAddress(const std::string& interface);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_STATIC_ADDRESS_H_
