// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// network_check.cpp - checks that the addresses of the interfaces fit together.
#include "velkctl/doctor/network_check.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <optional>
#include <string_view>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/files/interface_state.h"
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

// "velkctl set eth1.address=ADDRESS eth1.netmask=NETMASK"
std::string SetOf(const AffectedSettings& settings) {
    std::string command = "velkctl set";
    for (const Setting& setting : settings) {
        std::string placeholder(setting.row->name);
        std::ranges::transform(placeholder, placeholder.begin(), ::toupper);
        command.append(" ").append(setting.name()).append("=").append(placeholder);
    }
    return command;
}

Finding Missing(const AffectedSettings& settings) {
    const bool is_one = settings.size() == 1;
    const std::string interface(settings.front().interface);
    return About(settings, velk::kInterfacesFile, Impact::kNothing)
        .Problem(is_one ? "is missing" : "are missing",
                 interface + ".method is static, and ifup needs " + (is_one ? "it" : "them"),
                 SetOf(settings));
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

// ifup needs an address and a mask. A line that the library does not read is no missing one.
Findings CheckMissing(const std::string& interface, const PlannedValues& planned) {
    Findings findings;
    AffectedSettings missing;
    for (const uint32_t id : {VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK}) {
        const Setting setting = SettingsOf(id, interface).front();
        const std::optional<Data> data = planned.Get(setting);
        if (!data || !PrintText(*data, "").empty()) {
            continue;
        }
        const std::optional<Finding> of_line = OwnLineFinding(setting);
        if (!of_line) {
            missing.push_back(setting);
        } else if (of_line->severity == Severity::kWarning) {
            Finding finding = Missing({setting});  // a set would add the line in the wrong place
            finding.remedy = of_line->remedy;
            findings.push_back(finding);
        } else if (of_line->impact == Impact::kSetting) {
            findings.push_back(*of_line);  // a set would not add the line
        }
    }
    Append(findings, missing.empty() ? Findings() : Findings{Missing(missing)});
    return findings;
}

// True if the device has the address: the configured one, or with DHCP the present one.
bool HasAddress(const std::string& interface, const std::string& address,
                const std::vector<StaticNetwork>& networks) {
    const auto own = std::ranges::find(networks, interface, &StaticNetwork::interface);
    return own == networks.end() ? ReadInterfaceState(interface).Has(address)
                                 : own->network.address == ParseIpv4(address);
}

// A forwarder that asks the device asks itself. With --force, a resolver may run there.
Findings CheckServer(const std::string& server, const std::vector<StaticNetwork>& networks) {
    const std::optional<uint32_t> address = ParseIpv4(server);
    if (address && IsLoopback(*address)) {
        return {AboutAddress(VELK_CMD_DNS, VELK_WIRED_INTERFACE, *address)
                    .Warning("names the device itself", server + " is a loopback address")};
    }
    return FindingsOfEach(kInterfaces, [&](const std::string& interface) -> Findings {
        if (!address || !HasAddress(interface, server, networks)) {
            return {};
        }
        return {
            AboutAddress(VELK_CMD_DNS, VELK_WIRED_INTERFACE, *address)
                .Warning("names the device itself", server + " is the address of " + interface)};
    });
}

}  // namespace

Findings NetworkMismatches(const PlannedValues& planned) {
    const std::vector<StaticNetwork> networks = StaticNetworks(planned);
    Findings findings = FindingsOfEach(
        networks, [&](const StaticNetwork& own) { return CheckMissing(own.interface, planned); });
    Append(findings, FindingsOfEach(networks, CheckNetwork));
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

namespace {

// One value set after the other has this conflict in between: only a set of both is refused.
std::optional<Problem> SameAddressProblem(const SettingChange& change,
                                          const PlannedValues& planned) {
    const Setting first = SettingsOf(VELK_CMD_IP_ADDRESS, VELK_WIRED_INTERFACE).front();
    const Setting& second = change.setting;
    if (second.row->id != VELK_CMD_IP_ADDRESS || second.interface != VELK_WIRELESS_INTERFACE ||
        !planned.Changes(first) || !IsStatic(first.interface, planned) ||
        AddressIn(change.value) != AddressIn(*planned.Get(first))) {
        return std::nullopt;
    }
    return Problem{.message = second.name() + ": " + Dotted(*AddressIn(change.value)) +
                              " is also the new value of " + first.name(),
                   .setting = second.name(),
                   .remedy = "give each interface an address of its own, or give --force"};
}

}  // namespace

std::optional<Problem> NetworkProblem(const SettingChange& change, const PlannedValues& planned) {
    const Setting& setting = change.setting;
    const uint32_t id = setting.row->id;
    if (!IsAddressCommand(id) || !AddressIn(change.value) ||
        !IsStatic(setting.interface, planned)) {
        return std::nullopt;
    }
    const Conflict conflict = ConflictOf(id, NetworkOf(setting.interface, planned));
    if (conflict.problem.empty()) {
        return SameAddressProblem(change, planned);
    }
    const std::string name = setting.name();
    return Problem{
        .message = name + ": " + Dotted(*AddressIn(change.value)) + " " + conflict.problem,
        .setting = name,
        .detail = conflict.reason,
        .remedy = std::string(RemedyOf(id)) + ", or give --force"};
}

}  // namespace velkctl
