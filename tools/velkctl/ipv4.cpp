// ipv4.cpp - IPv4 addresses as people write them.
#include "velkctl/ipv4.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace velkctl {

std::optional<uint32_t> ParseIpv4(const std::string& word) {
    in_addr address{};
    if (word.find('\0') != std::string::npos || inet_pton(AF_INET, word.c_str(), &address) != 1) {
        return std::nullopt;
    }
    return ntohl(address.s_addr);
}

}  // namespace velkctl
