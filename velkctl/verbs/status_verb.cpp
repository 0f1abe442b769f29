// status_verb.cpp - the verb that shows the configuration beside the running state.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/dhcp_client.h"
#include "velkctl/call/interface_state.h"
#include "velkctl/call/running_gateway.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/lock_holder.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/text/columns.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// A part of the device. Empty texts are not known, or not configured.
struct State {
    std::string name;
    std::string configured{};
    std::string running{};
    bool differs = false;
};

using States = std::vector<State>;

// The configuration of an interface and its state in the kernel.
struct Interface {
    std::string name;
    bool is_used;  // false for eth1 while the cable is in
    std::string method;
    InterfaceState kernel;
};

std::string Configured(uint32_t id, const Interface& interface, const Device& device) {
    const Setting setting = SettingsOf(id, interface.name).front();
    const Answer answer = device.Get(setting);
    return answer.ok() ? setting.row->kind->Print(answer.data) : "";
}

State Compared(const Interface& interface, std::string_view part, const std::string& configured,
               const std::string& running) {
    const bool differs = interface.is_used && !configured.empty() && configured != running;
    return {interface.name + "." + std::string(part), configured, running, differs};
}

std::string OrNone(const std::string& text) {
    return text.empty() ? std::string(kNone) : text;
}

State LinkState(const Interface& interface) {
    const InterfaceState& kernel = interface.kernel;
    const std::string link = kernel.has_link ? "up" : kernel.is_up ? "no link" : "down";
    return {interface.name + ".link", "", link};
}

State ClientState(const Interface& interface) {
    const std::string configured = interface.method.empty()       ? ""
                                   : interface.method == "static" ? "off"
                                                                  : "on";
    return Compared(interface, "dhcp-client", configured,
                    IsDhcpClientRunning(interface.name) ? "on" : "off");
}

// With DHCP any address is the lease; only its absence differs.
State LeaseState(const Interface& interface) {
    const std::string running = OrNone(interface.kernel.address());
    const bool differs = interface.is_used && running == kNone;
    return {interface.name + ".address", "dhcp", running, differs};
}

void AppendStatic(const Interface& interface, const Device& device, States& states) {
    const InterfaceState& kernel = interface.kernel;
    const InterfaceAddress first =
        kernel.has_address() ? kernel.addresses.front() : InterfaceAddress{};
    const auto append = [&](std::string_view part, uint32_t id, const std::string& running) {
        states.push_back(
            Compared(interface, part, Configured(id, interface, device), OrNone(running)));
    };
    append("address", VELK_CMD_IP_ADDRESS, first.address);
    append("netmask", VELK_CMD_NETMASK, first.netmask);
    append("gateway", VELK_CMD_GATEWAY, RunningGateway(interface.name));
}

void AppendStates(const Interface& interface, const Device& device, States& states) {
    states.push_back(LinkState(interface));
    states.push_back(ClientState(interface));
    if (interface.method == "static") {
        AppendStatic(interface, device, states);
        return;
    }
    states.push_back(LeaseState(interface));
    states.push_back({interface.name + ".gateway", "", OrNone(RunningGateway(interface.name))});
}

Interface ReadInterface(const std::string& name, const Device& device) {
    const bool is_wireless = name == VELK_WIRELESS_INTERFACE;
    Interface interface { name, true, "", ReadInterfaceState(name) };
    interface.is_used = !is_wireless || !ReadInterfaceState(VELK_WIRED_INTERFACE).has_link;
    interface.method = Configured(VELK_CMD_IP_METHOD, interface, device);
    return interface;
}

void AppendWireless(States& states) {
    states.push_back({"eth1.adapter", "", CheckAdapter().empty() ? "attached" : "none"});
    states.push_back({"eth1.daemon", "", IsBound(velk::kRequestSocket) ? "on" : "off"});
}

States ReadStates(const std::string& wanted, const Device& device) {
    States states;
    for (const std::string name : kInterfaces) {
        if (!wanted.empty() && wanted != name) {
            continue;
        }
        if (name == VELK_WIRELESS_INTERFACE) {
            AppendWireless(states);
        }
        AppendStates(ReadInterface(name, device), device, states);
    }
    if (wanted.empty()) {
        const std::string holder = DescribeLockHolder();
        states.push_back({"lock", "", holder.empty() ? "free" : "held by " + holder});
    }
    return states;
}

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json StateInJson(const State& state) {
    Json object;
    object["name"] = state.name;
    object["configured"] = TextOrNull(state.configured);
    object["running"] = TextOrNull(state.running);
    object["differs"] = state.differs;
    return object;
}

std::string Row(const State& state) {
    constexpr size_t kName = 18;
    constexpr size_t kValue = 17;
    const std::string configured = state.configured.empty() ? "-" : state.configured;
    return Padded(state.name, kName) + Padded(configured, kValue) +
           (state.differs ? Padded(state.running, kValue) + "differs" : state.running) + "\n";
}

}  // namespace

ExitStatus RunStatus(const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    const States states =
        ReadStates(invocation.words.empty() ? "" : invocation.words.front(), device);
    report.Text(Row({"name", "configured", "running"}));
    Json list = Json::array();
    for (const State& state : states) {
        report.Text(Row(state));
        list.push_back(StateInJson(state));
    }
    const bool differs = std::ranges::any_of(states, &State::differs);
    report.Member("states", std::move(list));
    return differs ? ExitStatus::kFailed : ExitStatus::kDone;
}

}  // namespace velkctl
