// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// running_gateway.cpp - the default gateway that the kernel uses.
#include "velkctl/files/running_gateway.h"

#include <array>
#include <cstdint>
#include <vector>

#include <arpa/inet.h>

#include "lib/base/numbers.h"
#include "lib/base/paths.h"
#include "velkctl/files/text_file.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr std::string_view kDefaultDestination = "00000000";

}  // namespace

// The kernel prints the address as it is in memory.
std::string GatewayIn(std::string_view line, std::string_view interface) {
    const std::vector<std::string> words = WordsOf(line);
    if (words.size() < 3 || words[0] != interface || words[1] != kDefaultDestination) {
        return {};
    }
    size_t end = 0;
    const in_addr address{ParseLeadingNumber<uint32_t>(words[2], end, 16).value_or(0)};
    std::array<char, INET_ADDRSTRLEN> text{};
    (void)inet_ntop(AF_INET, &address, text.data(), text.size());
    return text.data();
}

std::string RunningGateway(const std::string& interface) {
    for (const std::string& line : ReadTextFile(velk::kRoutingTable).lines) {
        if (std::string gateway = GatewayIn(line, interface); !gateway.empty()) {
            return gateway;
        }
    }
    return {};
}

}  // namespace velkctl
