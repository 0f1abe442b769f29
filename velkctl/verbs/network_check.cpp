// network_check.cpp - checks that the addresses of an interface fit together.
#include "velkctl/verbs/network_check.h"

#include <bit>
#include <optional>
#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/settings/address_values.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

// The configuration, with the new value in its place.
struct Network {
    std::optional<uint32_t> address;
    std::optional<uint32_t> mask;
    std::optional<uint32_t> gateway;
};

std::string Dotted(uint32_t address) {
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        text.append(text.empty() ? "" : ".").append(std::to_string(address >> (shift - 8) & 0xffU));
    }
    return text;
}

// "192.168.0.0/24"
std::string Range(uint32_t address, uint32_t mask) {
    return Dotted(address & mask) + "/" + std::to_string(std::popcount(mask));
}

std::optional<uint32_t> AddressIn(const Data& data) {
    return ParseIpv4(PrintText(data, ""));
}

std::optional<Answer> Read(uint32_t id, const Setting& setting, const Device& device) {
    const std::string subject = setting.name() + ": reading the other settings";
    Answer answer = device.Execute({VELK_GET, id, setting.interface}, {}, subject);
    return answer.ok() ? std::optional(std::move(answer)) : std::nullopt;
}

bool IsStatic(const Setting& setting, const Device& device) {
    const std::optional<Answer> method = Read(VELK_CMD_IP_METHOD, setting, device);
    return method && method->data[0] == VELK_METHOD_STATIC;
}

Network NetworkWith(const Setting& setting, const Data& value, const Device& device) {
    const auto address_of = [&](uint32_t id) -> std::optional<uint32_t> {
        if (id == setting.row->id) {
            return AddressIn(value);
        }
        const std::optional<Answer> answer = Read(id, setting, device);
        return answer ? AddressIn(answer->data) : std::nullopt;
    };
    Network network{address_of(VELK_CMD_IP_ADDRESS), address_of(VELK_CMD_NETMASK),
                    address_of(VELK_CMD_GATEWAY)};
    if (network.mask && !IsMask(*network.mask)) {
        network.mask.reset();
    }
    return network;
}

// Returns the special role of an address in its network; empty if a host can have it. In networks
// of one or two addresses, hosts can have all.
std::string ReservedAs(uint32_t address, uint32_t mask) {
    if (std::popcount(mask) > 30) {
        return {};
    }
    const uint32_t host = address & ~mask;
    const std::string range = Range(address, mask);
    if (host == 0) {
        return "the address of the network " + range + " itself";
    }
    return host == ~mask ? "the broadcast address of the network " + range : "";
}

std::string AddressProblem(const Network& network) {
    if (network.address == network.gateway) {
        return "is the gateway of the interface";
    }
    const std::string reserved =
        network.mask ? ReservedAs(*network.address, *network.mask) : std::string();
    return reserved.empty() ? "" : "is " + reserved + ", with the netmask that the interface has";
}

std::string NetmaskProblem(const Network& network) {
    const std::string reserved =
        network.address ? ReservedAs(*network.address, *network.mask) : std::string();
    return reserved.empty() ? "" : "makes the address of the interface " + reserved;
}

std::string GatewayProblem(const Network& network) {
    if (network.gateway == network.address) {
        return "is the address of the interface itself";
    }
    if (!network.address || !network.mask) {
        return {};
    }
    if (((*network.gateway ^ *network.address) & *network.mask) != 0) {
        return "is outside the network of the interface, " + Range(*network.address, *network.mask);
    }
    const std::string reserved = ReservedAs(*network.gateway, *network.mask);
    return reserved.empty() ? "" : "is " + reserved;
}

std::string ProblemOf(uint32_t id, const Network& network) {
    switch (id) {
        case VELK_CMD_IP_ADDRESS:
            return network.address ? AddressProblem(network) : "";
        case VELK_CMD_NETMASK:
            return network.mask ? NetmaskProblem(network) : "";
        default:
            return network.gateway ? GatewayProblem(network) : "";
    }
}

std::string_view RemedyOf(uint32_t id) {
    switch (id) {
        case VELK_CMD_IP_ADDRESS:
            return "give another, set the netmask or gateway first";
        case VELK_CMD_NETMASK:
            return "give another, set the address first";
        default:
            return "give another, set the address and netmask first";
    }
}

}  // namespace

std::string NetworkProblem(const Setting& setting, const Data& value, const Device& device) {
    const uint32_t id = setting.row->id;
    if (!IsAddressCommand(id) || !AddressIn(value) || !IsStatic(setting, device)) {
        return {};
    }
    const std::string problem = ProblemOf(id, NetworkWith(setting, value, device));
    if (problem.empty()) {
        return {};
    }
    return Dotted(*AddressIn(value)) + " " + problem + "; " + std::string(RemedyOf(id)) +
           ", or give --force";
}

}  // namespace velkctl
