// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interface_state.h - the state of a network interface in the kernel.
#ifndef VELKCTL_FILES_INTERFACE_STATE_H_
#define VELKCTL_FILES_INTERFACE_STATE_H_

#include <optional>
#include <string>
#include <vector>

#include <ifaddrs.h>

namespace velkctl {

struct InterfaceAddress {
    std::string address;
    std::string netmask;  // empty if unknown
};

struct InterfaceState {
    bool exists = false;
    bool is_up = false;
    bool has_link = false;  // a cable or a radio link; false while the interface is down
    // The IPv4 addresses: those of the interface, then those of aliases such as eth0:avahi.
    std::vector<InterfaceAddress> addresses{};

    bool has_address() const { return !addresses.empty(); }
    // Returns this address with its netmask; nothing if the interface lacks it.
    std::optional<InterfaceAddress> Find(const std::string& address) const;
    bool Has(const std::string& address) const { return Find(address).has_value(); }
    // Returns the first address; empty if it has none.
    std::string address() const { return has_address() ? addresses.front().address : ""; }
};

// Asks the kernel. Reads no file and runs no tool, so it never waits.
InterfaceState ReadInterfaceState(const std::string& name);

// Returns the state of the interface in the list of getifaddrs(3).
InterfaceState FindInterfaceState(const ifaddrs* list, const std::string& name);

// True if the interface chose the address itself, as it does with APIPA if no DHCP server answers:
// 169.254.x.x.
bool IsLinkLocal(const std::string& address);

}  // namespace velkctl

#endif  // VELKCTL_FILES_INTERFACE_STATE_H_
