// network_check.cpp - checks that the addresses of the interfaces fit together.
#include "velkctl/doctor/network_check.h"

#include <bit>
#include <optional>
#include <string_view>
#include <vector>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/settings/address_values.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

// The configuration as it will be.
struct Network {
    std::optional<uint32_t> address;
    std::optional<uint32_t> mask;
    std::optional<uint32_t> gateway;
};

// "192.168.0.0/24"
std::string Range(uint32_t address, uint32_t mask) {
    return Dotted(address & mask) + "/" + std::to_string(std::popcount(mask));
}

std::optional<uint32_t> AddressIn(const Data& data) {
    return ParseIpv4(PrintText(data, ""));
}

bool IsStatic(std::string_view interface, const PlannedValues& planned) {
    const std::optional<Data> method = planned.Get(VELK_CMD_IP_METHOD, interface);
    return method && (*method)[0] == VELK_METHOD_STATIC;
}

Network NetworkOf(std::string_view interface, const PlannedValues& planned) {
    const auto address_of = [&](uint32_t id) -> std::optional<uint32_t> {
        const std::optional<Data> data = planned.Get(id, interface);
        return data ? AddressIn(*data) : std::nullopt;
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

// The network of an interface with a static address.
struct StaticNetwork {
    std::string interface;
    Network network;
};

std::vector<StaticNetwork> StaticNetworks(const PlannedValues& planned) {
    std::vector<StaticNetwork> networks;
    for (const std::string interface : kInterfaces) {
        if (IsStatic(interface, planned)) {
            networks.push_back({interface, NetworkOf(interface, planned)});
        }
    }
    return networks;
}

// Returns a finding with the place of the value and its fix.
Finding AboutAddress(uint32_t id, std::string_view interface, uint32_t address) {
    const Setting setting = SettingsOf(id, interface).front();
    Finding about = AboutValue(setting, Dotted(address));
    about.remedy = "velkctl set " + setting.name() + " VALUE";
    return about;
}

Findings MismatchOf(const Finding& about, uint32_t address, const Conflict& conflict) {
    if (conflict.problem.empty()) {
        return {};
    }
    const std::string reason = conflict.reason.empty() ? "" : ", and " + conflict.reason;
    return {about.Problem(conflict.problem, "it is " + Dotted(address) + reason)};
}

Findings GatewayMismatch(const StaticNetwork& own) {
    const Network& network = own.network;
    if (!network.gateway) {
        return {};
    }
    return MismatchOf(AboutAddress(VELK_CMD_GATEWAY, own.interface, *network.gateway),
                      *network.gateway, GatewayConflict(network));
}

Findings AddressMismatch(const StaticNetwork& own) {
    const Network& network = own.network;
    if (!network.address || !network.mask) {
        return {};
    }
    return MismatchOf(AboutAddress(VELK_CMD_IP_ADDRESS, own.interface, *network.address),
                      *network.address, ReservedConflict(*network.address, *network.mask));
}

Findings CheckNetwork(const StaticNetwork& own) {
    Findings findings = AddressMismatch(own);
    Append(findings, GatewayMismatch(own));
    return findings;
}

Findings CheckOneAddressOfTwo(const std::vector<StaticNetwork>& networks) {
    if (networks.size() < 2 || !networks[0].network.address ||
        networks[0].network.address != networks[1].network.address) {
        return {};
    }
    const uint32_t address = *networks[1].network.address;
    return {AboutAddress(VELK_CMD_IP_ADDRESS, networks[1].interface, address)
                .Problem("is also the address of " + networks[0].interface,
                         "both are " + Dotted(address))};
}

// A forwarder that asks the device asks itself. With --force, a resolver may run there.
Findings CheckServer(const std::string& server, const std::vector<StaticNetwork>& networks) {
    const std::optional<uint32_t> address = ParseIpv4(server);
    if (address && IsLoopback(*address)) {
        return {AboutAddress(VELK_CMD_DNS, VELK_WIRED_INTERFACE, *address)
                    .Warning("names the device itself", server + " is a loopback address")};
    }
    return FindingsOfEach(networks, [&](const StaticNetwork& own) -> Findings {
        if (!address || address != own.network.address) {
            return {};
        }
        return {AboutAddress(VELK_CMD_DNS, VELK_WIRED_INTERFACE, *address)
                    .Warning("names the device itself",
                             server + " is the address of " + own.interface)};
    });
}

}  // namespace

Findings NetworkMismatches(const PlannedValues& planned) {
    const std::vector<StaticNetwork> networks = StaticNetworks(planned);
    Findings findings = FindingsOfEach(networks, CheckNetwork);
    Append(findings, CheckOneAddressOfTwo(networks));
    const Setting dns = SettingsOf(VELK_CMD_DNS, VELK_WIRED_INTERFACE).front();
    const std::optional<Data> servers = planned.Get(dns);
    if (servers) {
        const std::vector<std::string> words = WordsOf(dns.row->kind->Print(*servers));
        Append(findings, FindingsOfEach(words, [&](const std::string& server) {
                   return CheckServer(server, networks);
               }));
    }
    return findings;
}

std::optional<Problem> NetworkProblem(const SettingChange& change, const PlannedValues& planned) {
    const Setting& setting = change.setting;
    const uint32_t id = setting.row->id;
    if (!IsAddressCommand(id) || !AddressIn(change.value) ||
        !IsStatic(setting.interface, planned)) {
        return std::nullopt;
    }
    const Conflict conflict = ConflictOf(id, NetworkOf(setting.interface, planned));
    if (conflict.problem.empty()) {
        return std::nullopt;
    }
    const std::string name = setting.name();
    return Problem{
        .message = name + ": " + Dotted(*AddressIn(change.value)) + " " + conflict.problem,
        .setting = name,
        .detail = conflict.reason,
        .remedy = std::string(RemedyOf(id)) + ", or give --force"};
}

}  // namespace velkctl
