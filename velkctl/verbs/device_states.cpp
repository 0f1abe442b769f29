// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_states.cpp - the configuration of each part of the device beside its running state.
#include "velkctl/verbs/device_states.h"

#include <string_view>

#include "lib/base/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/files/lock_holder.h"
#include "velkctl/files/running_gateway.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"

namespace velkctl {
namespace {

constexpr const char* kStatic = "static";
constexpr const char* kDhcp = "dhcp";

// The configuration of an interface and its state in the kernel.
struct Interface {
    std::string name;
    std::string unused{};  // the reason if nothing uses eth1
    std::string method{};  // "static", "dhcp"; empty if neither
    InterfaceState kernel{};
    DhcpClient client{};

    bool is_used() const { return unused.empty(); }
    bool has_dhcp() const { return method == kDhcp; }
};

std::string Configured(uint32_t id, const std::string& interface, const Device& device) {
    return device.PrintedValue(SettingOf(id, interface));
}

PartState StateOf(const Interface& interface, std::string_view part, const std::string& configured,
                  const std::string& running, bool differs) {
    return {.name = interface.name + "." + std::string(part),
            .configured = configured,
            .running = running,
            .differs = interface.is_used() && !configured.empty() && differs};
}

PartState ComparedState(const Interface& interface, std::string_view part,
                        const std::string& configured, const std::string& running) {
    return StateOf(interface, part, configured, running, configured != running);
}

std::string OrNone(const std::string& text) {
    return text.empty() ? std::string(kNone) : text;
}

// Returns one text of each address, such as its netmask, in a line.
std::string RunningAddresses(const InterfaceState& kernel, std::string InterfaceAddress::*text) {
    std::string line;
    for (const InterfaceAddress& own : kernel.addresses) {
        line.append(line.empty() ? "" : " ").append(own.*text);
    }
    return OrNone(line);
}

PartState LinkState(const Interface& interface) {
    const InterfaceState& kernel = interface.kernel;
    const std::string link = kernel.has_link ? "up" : kernel.is_up ? "no link" : "down";
    return {.name = interface.name + ".link", .running = link, .is_on = kernel.has_link};
}

PartState ClientState(const Interface& interface) {
    const std::string configured = interface.method.empty() ? ""
                                   : interface.has_dhcp()   ? "on"
                                                            : "off";
    const bool is_running = interface.client.is_running;
    PartState state =
        ComparedState(interface, "dhcp-client", configured, is_running ? "on" : "off");
    state.is_on = is_running;
    return state;
}

// A lease that cannot be read may be there.
bool MayHaveLease(const DhcpClient& client) {
    return client.is_running && (client.lease || !client.is_lease_known);
}

PartState LeaseState(const Interface& interface) {
    const DhcpClient& client = interface.client;
    const std::string running = client.lease           ? client.lease->Text()
                                : MayHaveLease(client) ? "unknown"
                                                       : std::string(kNone);
    PartState state = StateOf(interface, "lease", interface.has_dhcp() ? kDhcp : "", running,
                              !MayHaveLease(client));
    state.expiry = client.lease ? client.lease->expiry : std::nullopt;
    return state;
}

// True if the interface has the address of its lease, as far as that is known. A link-local address
// is never of a lease.
bool HasAddressOfLease(const Interface& interface) {
    if (!MayHaveLease(interface.client) || !interface.kernel.has_address()) {
        return false;
    }
    return interface.client.lease ? interface.kernel.Has(interface.client.lease->address)
                                  : !IsLinkLocal(interface.kernel.address());
}

void AppendDhcp(const Interface& interface, PartStates& states) {
    const InterfaceState& kernel = interface.kernel;
    const std::string configured = interface.has_dhcp() ? kDhcp : "";
    states.push_back(StateOf(interface, "address", configured,
                             RunningAddresses(kernel, &InterfaceAddress::address),
                             !HasAddressOfLease(interface)));
    states.push_back(StateOf(interface, "netmask", configured,
                             RunningAddresses(kernel, &InterfaceAddress::netmask), false));
    states.push_back(
        StateOf(interface, "gateway", configured, OrNone(RunningGateway(interface.name)), false));
}

// An interface may have more addresses than the configured one. The netmask of that one is
// compared; if it is missing, that of the first.
void AppendStatic(const Interface& interface, const Device& device, PartStates& states) {
    const InterfaceState& kernel = interface.kernel;
    const std::string address = Configured(VELK_CMD_IP_ADDRESS, interface.name, device);
    const std::string netmask = Configured(VELK_CMD_NETMASK, interface.name, device);
    const InterfaceAddress first =
        kernel.has_address() ? kernel.addresses.front() : InterfaceAddress{};
    const InterfaceAddress compared = kernel.Find(address).value_or(first);
    states.push_back(StateOf(interface, "address", address,
                             RunningAddresses(kernel, &InterfaceAddress::address),
                             !kernel.Has(address)));
    states.push_back(StateOf(interface, "netmask", netmask,
                             RunningAddresses(kernel, &InterfaceAddress::netmask),
                             compared.netmask != netmask));
    states.push_back(ComparedState(interface, "gateway",
                                   Configured(VELK_CMD_GATEWAY, interface.name, device),
                                   OrNone(RunningGateway(interface.name))));
}

void AppendStates(const Interface& interface, const Device& device, PartStates& states) {
    states.push_back(LinkState(interface));
    states.push_back(ClientState(interface));
    states.push_back(LeaseState(interface));
    if (interface.method == kStatic) {
        AppendStatic(interface, device, states);
        return;
    }
    AppendDhcp(interface, states);
}

// The library asks the daemon nothing and gives eth1 no address while the cable is in.
std::string ReasonForNoUse(const std::string& name) {
    if (name != VELK_WIRELESS_INTERFACE) {
        return "";
    }
    if (!CheckAdapter().empty()) {
        return "not used without an adapter";
    }
    return ReadInterfaceState(VELK_WIRED_INTERFACE).has_link ? "not used while the cable is in"
                                                             : "";
}

Interface ReadInterface(const std::string& name, const Device& device) {
    Interface interface { .name = name, .unused = ReasonForNoUse(name) };
    const std::string method = Configured(VELK_CMD_IP_METHOD, name, device);
    interface.method = method == kStatic || method == kDhcp ? method : "";
    interface.kernel = ReadInterfaceState(name);
    interface.client = ReadDhcpClient(name);
    return interface;
}

void AppendWireless(const Interface& interface, PartStates& states) {
    const bool is_attached = CheckAdapter().empty();
    const bool is_bound = IsBound(velk::kRequestSocket);
    states.push_back({.name = "eth1.adapter",
                      .running = is_attached ? "attached" : "none",
                      .is_on = is_attached});
    states.push_back(
        {.name = "eth1.daemon", .running = is_bound ? "on" : "off", .is_on = is_bound});
    states.push_back({.name = "eth1.use",
                      .running = interface.is_used() ? "used" : interface.unused,
                      .is_on = interface.is_used()});
}

}  // namespace

PartStates ReadStates(const std::string& wanted, const Device& device) {
    PartStates states;
    for (const std::string name : kInterfaces) {
        if (!wanted.empty() && wanted != name) {
            continue;
        }
        const Interface interface = ReadInterface(name, device);
        if (name == VELK_WIRELESS_INTERFACE) {
            AppendWireless(interface, states);
        }
        AppendStates(interface, device, states);
    }
    if (wanted.empty()) {
        const std::string holder = DescribeLockHolder();
        states.push_back({.name = "lock",
                          .running = holder.empty() ? "free" : "held by " + holder,
                          .is_on = !holder.empty()});
    }
    return states;
}

}  // namespace velkctl
