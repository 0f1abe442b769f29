// ipv4.h - IPv4 addresses as people write them.
#ifndef VELKCTL_IPV4_H_
#define VELKCTL_IPV4_H_

#include <cstdint>
#include <optional>
#include <string>

namespace velkctl {

// The address, first number in the highest byte, of four decimal numbers, none with a leading zero:
// other programs read 010 as 8.
std::optional<uint32_t> ParseIpv4(const std::string& word);

}  // namespace velkctl

#endif  // VELKCTL_IPV4_H_
