// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// network_check.cpp - checks that the addresses of the interfaces fit together.
#include <array>
#include <bit>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/files/text_file.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/address_values.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

// The configuration of an interface as it will be.
struct Network {
    std::string interface;
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

Network NetworkOf(std::string_view interface, const PlannedValues& planned) {
    const auto address_of = [&](uint32_t id) -> std::optional<uint32_t> {
        const std::optional<Data> data = planned.Get(id, interface);
        return data ? AddressIn(*data) : std::nullopt;
    };
    Network network{std::string(interface), address_of(VELK_CMD_IP_ADDRESS),
                    address_of(VELK_CMD_NETMASK), address_of(VELK_CMD_GATEWAY)};
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
    if (!network.address) {
        return {};
    }
    if (network.address == network.gateway) {
        return {"is the gateway of the interface"};
    }
    return network.mask ? ReservedConflict(*network.address, *network.mask) : Conflict{};
}

Conflict NetmaskConflict(const Network& network) {
    if (!network.address || !network.mask) {
        return {};
    }
    const std::string_view reserved = ReservedAs(*network.address, *network.mask);
    const std::string role = Dotted(*network.address) + " would be " + std::string(reserved) + " ";
    return reserved.empty() ? Conflict{}
                            : Conflict{"does not fit the address of the interface",
                                       role + Range(*network.address, *network.mask)};
}

Conflict GatewayConflict(const Network& network) {
    if (!network.gateway) {
        return {};
    }
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

// The check of a setting before a set, and the other values that may have to change too.
struct AddressRule {
    uint32_t id;
    Conflict (*conflict)(const Network& network);
    std::string_view others;
};

constexpr std::array<AddressRule, 3> kRules{{
    {VELK_CMD_IP_ADDRESS, AddressConflict, "the netmask or gateway"},
    {VELK_CMD_NETMASK, NetmaskConflict, "the address"},
    {VELK_CMD_GATEWAY, GatewayConflict, "the address and netmask"},
}};

std::string RemedyOf(const AddressRule& rule, WayOut way_out) {
    const std::string others(rule.others);
    return way_out == WayOut::kOfSet
               ? "give another value, or set " + others + " first, or give --force"
               : "give another value, or give " + others + " too";
}

// Returns the networks of the interfaces with the method static.
std::vector<Network> StaticNetworks(const PlannedValues& planned) {
    std::vector<Network> networks;
    for (const std::string_view interface : kInterfaces) {
        if (planned.HasStaticMethod(interface)) {
            networks.push_back(NetworkOf(interface, planned));
        }
    }
    return networks;
}

// Returns a finding with the place of the value and its fix.
Finding AboutAddress(uint32_t id, std::string_view interface, uint32_t address) {
    const Setting setting = SettingOf(id, interface);
    return AboutValue(setting, Dotted(address)).FixedBy("velkctl set " + setting.name() + " VALUE");
}

Findings MismatchOf(uint32_t id, const Network& network, std::optional<uint32_t> address,
                    const Conflict& conflict) {
    if (conflict.problem.empty()) {
        return {};
    }
    const std::string reason = conflict.reason.empty() ? "" : ", and " + conflict.reason;
    return {AboutAddress(id, network.interface, *address)
                .Problem(conflict.problem, "it is " + Dotted(*address) + reason)};
}

// An address that is also the gateway is one finding, about the gateway.
Findings CheckNetwork(const Network& network) {
    Network without_gateway = network;
    without_gateway.gateway.reset();
    Findings findings =
        MismatchOf(VELK_CMD_IP_ADDRESS, network, network.address, AddressConflict(without_gateway));
    Append(findings,
           MismatchOf(VELK_CMD_GATEWAY, network, network.gateway, GatewayConflict(network)));
    return findings;
}

// "velkctl set eth1.address=ADDRESS eth1.netmask=NETMASK"
std::string SetOf(const AffectedSettings& settings) {
    std::string command = "velkctl set";
    for (const Setting& setting : settings) {
        command.append(" ").append(setting.name()).append("=").append(PlaceholderOf(setting));
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

Findings CheckOneAddressOfTwo(const std::vector<Network>& networks) {
    if (networks.size() < 2 || !networks[0].address || networks[0].address != networks[1].address) {
        return {};
    }
    return {AboutAddress(VELK_CMD_IP_ADDRESS, networks[1].interface, *networks[1].address)
                .Problem("is also the address of " + networks[0].interface,
                         "both are " + Dotted(*networks[1].address))};
}

// ifup needs an address and a mask. A line that the library does not read is no missing one.
Findings CheckMissing(const std::string& interface, const PlannedValues& planned) {
    Findings findings;
    AffectedSettings missing;
    for (const uint32_t id : {VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK}) {
        const Setting setting = SettingOf(id, interface);
        const std::optional<Data> data = planned.Get(setting);
        if (!data || !PrintText(*data, "").empty()) {
            continue;
        }
        const std::optional<Finding> of_line = OwnLineFinding(setting);
        if (!of_line) {
            missing.push_back(setting);
        } else if (of_line->severity == Severity::kWarning) {
            // A set would add the line in the wrong place.
            findings.push_back(Missing({setting}).FixedBy(of_line->remedy));
        } else if (of_line->impact == Impact::kSetting) {
            findings.push_back(*of_line);  // a set would not add the line
        }
    }
    Append(findings, missing.empty() ? Findings() : Findings{Missing(missing)});
    return findings;
}

// True if the device has the address: the configured one, or with DHCP the present one.
bool HasAddress(const std::string& interface, uint32_t address,
                const std::vector<Network>& networks) {
    const Network* own = velk::FindRow(networks, interface, &Network::interface);
    return own == nullptr ? ReadInterfaceState(interface).Has(Dotted(address))
                          : own->address == address;
}

// The DNS forwarder would query itself, unless a resolver runs on the device.
Findings CheckDnsServer(const std::string& server, const std::vector<Network>& networks) {
    const std::optional<uint32_t> address = ParseIpv4(server);
    if (!address) {
        return {};
    }
    const Finding about = AboutAddress(VELK_CMD_DNS, VELK_WIRED_INTERFACE, *address);
    constexpr std::string_view kEffect = "names the device itself";
    if (IsLoopback(*address)) {
        return {about.Warning(kEffect, server + " is a loopback address")};
    }
    return FindingsOfEach(kInterfaces, [&](const std::string& interface) {
        const std::string reason = server + " is the address of " + interface;
        return HasAddress(interface, *address, networks) ? Findings{about.Warning(kEffect, reason)}
                                                         : Findings();
    });
}

// Values that are set one after the other have this conflict in between, so it is a problem only
// if one call changes both.
std::optional<Problem> SameAddressProblem(const SettingChange& change, const PlannedValues& planned,
                                          WayOut way_out) {
    const Setting first = SettingOf(VELK_CMD_IP_ADDRESS, VELK_WIRED_INTERFACE);
    const Setting& second = change.setting;
    if (second.row->id != VELK_CMD_IP_ADDRESS || second.interface != VELK_WIRELESS_INTERFACE ||
        !planned.Changes(first) || !planned.HasStaticMethod(first.interface) ||
        AddressIn(change.value) != AddressIn(*planned.Get(first))) {
        return std::nullopt;
    }
    return Problem{.message = second.name() + ": " + Dotted(*AddressIn(change.value)) +
                              " is also the new value of " + first.name(),
                   .setting = second.name(),
                   .remedy = std::string("give each interface an address of its own") +
                             (way_out == WayOut::kOfSet ? ", or give --force" : "")};
}

}  // namespace

Findings NetworkMismatches(const PlannedValues& planned) {
    const std::vector<Network> networks = StaticNetworks(planned);
    Findings findings = FindingsOfEach(
        networks, [&](const Network& own) { return CheckMissing(own.interface, planned); });
    Append(findings, FindingsOfEach(networks, CheckNetwork));
    Append(findings, CheckOneAddressOfTwo(networks));
    const Setting dns = SettingOf(VELK_CMD_DNS, VELK_WIRED_INTERFACE);
    const std::optional<Data> servers = planned.Get(dns);
    const std::string text = servers ? dns.row->kind->Print(*servers) : "";
    Append(findings, FindingsOfEach(WordsOf(text), [&](const std::string& server) {
               return CheckDnsServer(server, networks);
           }));
    return findings;
}

std::optional<Problem> NetworkProblem(const SettingChange& change, const PlannedValues& planned,
                                      WayOut way_out) {
    const Setting& setting = change.setting;
    const AddressRule* rule = velk::FindRow(kRules, setting.row->id, &AddressRule::id);
    const std::optional<uint32_t> address = AddressIn(change.value);
    if (rule == nullptr || !address || !planned.HasStaticMethod(setting.interface)) {
        return std::nullopt;
    }
    const Conflict conflict = rule->conflict(NetworkOf(setting.interface, planned));
    if (conflict.problem.empty()) {
        return SameAddressProblem(change, planned, way_out);
    }
    const std::string name = setting.name();
    return Problem{.message = name + ": " + Dotted(*address) + " " + conflict.problem,
                   .setting = name,
                   .detail = conflict.reason,
                   .remedy = RemedyOf(*rule, way_out)};
}

}  // namespace velkctl
