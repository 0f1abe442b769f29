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
std::string_view ReservedAs(uint32_t address, uint32_t mask) {
    if (std::popcount(mask) > 30) {
        return {};
    }
    const uint32_t host = address & ~mask;
    if (host == 0) {
        return "the address of the network";
    }
    return host == ~mask ? "the broadcast address of the network" : "";
}

// The problem of a value, to follow it in a message, and its reason.
struct Conflict {
    std::string problem{};  // empty if none
    std::string reason{};
};

std::string NetworkIs(uint32_t address, uint32_t mask) {
    return "the network of the interface is " + Range(address, mask);
}

Conflict ReservedConflict(uint32_t address, uint32_t mask) {
    const std::string_view reserved = ReservedAs(address, mask);
    return reserved.empty()
               ? Conflict{}
               : Conflict{std::string("is ").append(reserved), NetworkIs(address, mask)};
}

Conflict AddressConflict(const Network& network) {
    if (network.address == network.gateway) {
        return {"is the gateway of the interface"};
    }
    return network.mask ? ReservedConflict(*network.address, *network.mask) : Conflict{};
}

Conflict NetmaskConflict(const Network& network) {
    const std::string_view reserved =
        network.address ? ReservedAs(*network.address, *network.mask) : std::string_view();
    if (reserved.empty()) {
        return {};
    }
    return {"does not fit the address of the interface",
            Dotted(*network.address) + " would be " + std::string(reserved) + " " +
                Range(*network.address, *network.mask)};
}

Conflict GatewayConflict(const Network& network) {
    if (network.gateway == network.address) {
        return {"is the address of the interface itself"};
    }
    if (!network.address || !network.mask) {
        return {};
    }
    if (((*network.gateway ^ *network.address) & *network.mask) != 0) {
        return {"is outside the network of the interface",
                NetworkIs(*network.address, *network.mask)};
    }
    return ReservedConflict(*network.gateway, *network.mask);
}

Conflict ConflictOf(uint32_t id, const Network& network) {
    switch (id) {
        case VELK_CMD_IP_ADDRESS:
            return network.address ? AddressConflict(network) : Conflict{};
        case VELK_CMD_NETMASK:
            return network.mask ? NetmaskConflict(network) : Conflict{};
        default:
            return network.gateway ? GatewayConflict(network) : Conflict{};
    }
}

std::string_view RemedyOf(uint32_t id) {
    switch (id) {
        case VELK_CMD_IP_ADDRESS:
            return "give another value, or set the netmask or gateway first";
        case VELK_CMD_NETMASK:
            return "give another value, or set the address first";
        default:
            return "give another value, or set the address and netmask first";
    }
}

}  // namespace

std::optional<Problem> NetworkProblem(const Setting& setting, const Data& value,
                                      const Device& device) {
    const uint32_t id = setting.row->id;
    if (!IsAddressCommand(id) || !AddressIn(value) || !IsStatic(setting, device)) {
        return std::nullopt;
    }
    const Conflict conflict = ConflictOf(id, NetworkWith(setting, value, device));
    if (conflict.problem.empty()) {
        return std::nullopt;
    }
    const std::string name = setting.name();
    return Problem{.message = name + ": " + Dotted(*AddressIn(value)) + " " + conflict.problem,
                   .setting = name,
                   .detail = conflict.reason,
                   .remedy = std::string(RemedyOf(id)) + ", or give --force"};
}

}  // namespace velkctl
