// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interface_state.cpp - the state of a network interface in the kernel.
#include "velkctl/files/interface_state.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>

namespace velkctl {
namespace {

constexpr std::string_view kLinkLocal = "169.254.";

// The C library names an address by its label: the address of an alias is that of "eth0:avahi".
bool IsAliasOf(std::string_view label, const std::string& name) {
    return label.starts_with(name + ":");
}

bool IsIpv4(const sockaddr* address) {
    return address != nullptr && address->sa_family == AF_INET;
}

std::string DottedDecimal(const sockaddr* address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    const auto* internet = reinterpret_cast<const sockaddr_in*>(address);
    (void)inet_ntop(AF_INET, &internet->sin_addr, text.data(), text.size());
    return text.data();
}

InterfaceAddress AddressOf(const ifaddrs& entry) {
    return {DottedDecimal(entry.ifa_addr),
            entry.ifa_netmask == nullptr ? "" : DottedDecimal(entry.ifa_netmask)};
}

void TakeFlags(unsigned flags, InterfaceState& state) {
    state.exists = true;
    state.is_up = (flags & IFF_UP) != 0;
    state.has_link = state.is_up && (flags & IFF_RUNNING) != 0;
}

}  // namespace

std::optional<InterfaceAddress> InterfaceState::Find(const std::string& address) const {
    const auto own = std::ranges::find(addresses, address, &InterfaceAddress::address);
    return own == addresses.end() ? std::nullopt : std::optional(*own);
}

InterfaceState FindInterfaceState(const ifaddrs* list, const std::string& name) {
    InterfaceState state;
    std::vector<InterfaceAddress> of_aliases;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        const bool is_own = entry->ifa_name == name;
        if (is_own) {
            TakeFlags(entry->ifa_flags, state);
        }
        if (IsIpv4(entry->ifa_addr) && (is_own || IsAliasOf(entry->ifa_name, name))) {
            (is_own ? state.addresses : of_aliases).push_back(AddressOf(*entry));
        }
    }
    state.addresses.insert(state.addresses.end(), of_aliases.begin(), of_aliases.end());
    return state;
}

InterfaceState ReadInterfaceState(const std::string& name) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) == -1) {
        return {};
    }
    InterfaceState state = FindInterfaceState(list, name);
    freeifaddrs(list);
    return state;
}

bool IsLinkLocal(const std::string& address) {
    return address.starts_with(kLinkLocal);
}

}  // namespace velkctl
