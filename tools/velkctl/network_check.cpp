// network_check.cpp - whether an interface's addresses fit together.
#include "velkctl/network_check.h"

#include <bit>
#include <optional>

#include "velkctl/address_values.h"
#include "velkctl/device.h"
#include "velkctl/ipv4.h"

namespace velkctl {
namespace {

std::optional<uint32_t> AddressIn(const Data& data) {
    return ParseIpv4(PrintText(data, ""));
}

std::optional<uint32_t> Read(uint32_t id, std::string_view interface) {
    const Answer answer = Execute({VELK_GET, id, interface});
    return answer.result == LIB_VELK_SUCCESS ? AddressIn(answer.data) : std::nullopt;
}

bool IsStatic(std::string_view interface) {
    const Answer answer = Execute({VELK_GET, VELK_CMD_IP_METHOD, interface});
    return answer.result == LIB_VELK_SUCCESS && answer.data[0] == VELK_METHOD_STATIC;
}

std::string Dotted(uint32_t address) {
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        text.append(text.empty() ? "" : ".").append(std::to_string(address >> (shift - 8) & 0xffU));
    }
    return text;
}

}  // namespace

std::string NetworkProblem(const Setting& setting, const Data& value) {
    if (setting.row->id != VELK_CMD_GATEWAY || !IsStatic(setting.interface)) {
        return {};
    }
    const std::optional<uint32_t> gateway = AddressIn(value);
    const std::optional<uint32_t> address = Read(VELK_CMD_IP_ADDRESS, setting.interface);
    const std::optional<uint32_t> mask = Read(VELK_CMD_NETMASK, setting.interface);
    if (!gateway || !address || !mask || !IsMask(*mask) || ((*gateway ^ *address) & *mask) == 0) {
        return {};
    }
    return Dotted(*gateway) + " is outside the network of the interface, " +
           Dotted(*address & *mask) + "/" + std::to_string(std::popcount(*mask)) +
           "; set its address and netmask first, or give --force";
}

}  // namespace velkctl
