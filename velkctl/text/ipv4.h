// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ipv4.h - IPv4 addresses in dotted decimal form.
#ifndef VELKCTL_TEXT_IPV4_H_
#define VELKCTL_TEXT_IPV4_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkctl {

// Returns the address of four decimal numbers, the first in the highest byte. A leading zero is not
// valid: other programs read 010 as 8.
std::optional<uint32_t> ParseIpv4(const std::string& word);

// "192.168.0.10"
std::string Dotted(uint32_t address);

// Returns the problem with a word that is no address, as it follows the word in a message: "is not
// an IPv4 address". `wanted` is the noun.
std::string NotIpv4Problem(const std::string& word, std::string_view wanted);

// True if the device reaches only itself at this address.
constexpr bool IsLoopback(uint32_t address) {
    return address >> 24U == 127;
}

// Returns the problem with an address for an interface, a router or a server, as it follows the
// address in a message: "is a loopback address". Empty if none.
std::string_view HostAddressProblem(uint32_t address);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_IPV4_H_
