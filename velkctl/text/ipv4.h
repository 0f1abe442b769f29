// ipv4.h - IPv4 addresses as people write them.
#ifndef VELKCTL_TEXT_IPV4_H_
#define VELKCTL_TEXT_IPV4_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkctl {

// The address, first number in the highest byte, of four decimal numbers, none with a leading zero:
// other programs read 010 as 8.
std::optional<uint32_t> ParseIpv4(const std::string& word);

// What keeps a word from being an address, behind the word in a message: "is not an IPv4 address".
// `wanted` is what it should be.
std::string NotIpv4Problem(const std::string& word, std::string_view wanted);

// Says whether the device reaches only itself at this address.
constexpr bool IsLoopback(uint32_t address) {
    return address >> 24U == 127;
}

// What keeps an address from being that of an interface, a router or a server, behind the address
// in a message: "is a loopback address"; empty when nothing does.
std::string_view HostAddressProblem(uint32_t address);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_IPV4_H_
