// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hardware.cpp - the cable, adapter and router of a device.
#include "sandbox/hardware/hardware.h"

#include <fstream>
#include <optional>

#include "sandbox/device/network_control.h"
#include "sandbox/hardware/cable.h"
#include "sandbox/hardware/recorded_network.h"
#include "sandbox/hardware/static_address.h"
#include "sandbox/hardware/tap_ports.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

// ifup(8) and ifdown(8) record here which interfaces are up: all of them, and each one alone.
constexpr char kInterfaceState[] = "/run/network/ifstate";
constexpr char kWiredState[] = "/run/network/ifstate.eth0";

// Does the same as ifup(8) at boot, which the simulated device may lack.
void SetWiredAddress(const NetworkControl& device) {
    const std::optional<StaticAddress> address = ReadStaticAddress(kWiredPort.name);
    if (!address) {
        return;
    }
    device.SetAddress(kWiredPort.name, *address);
    if (address->gateway.s_addr != INADDR_ANY) {
        device.SetGateway(kWiredPort.name, *address);
    }
    std::ofstream(kInterfaceState) << "lo=lo\neth0=eth0\n";
    std::ofstream(kWiredState) << "eth0\n";
}

}  // namespace

std::vector<std::string> Hardware::DaemonArguments(const HardwareOptions& options) {
    std::vector<std::string> arguments;
    if (options.has_wireless_record) {
        arguments = {"--record", kWirelessRecord};
    }
    if (options.state && options.state->daemon == RecordedDaemon::kSilent) {
        arguments.insert(arguments.end(), {"--reply", "silent"});
    }
    return arguments;
}

// The state of a captured device has a line about eth1.
bool Hardware::HasAdapter(const HardwareOptions& options) {
    const RecordedInterface* wireless =
        options.state ? options.state->Find(kWirelessPort.name) : nullptr;
    return wireless == nullptr || wireless->link != Link::kMissing;
}

std::string Hardware::Start() {
    std::string problems;
    try {
        MakePorts();
    } catch (const Failure& failure) {
        ports_.reset();
        problems = std::string("eth0 and eth1 are missing: ") + failure.what();
    }
    const bool has_daemon = recorded() == nullptr || recorded()->daemon != RecordedDaemon::kMissing;
    const std::string daemon_problem = has_daemon ? StartDaemon() : "";
    const bool both = !problems.empty() && !daemon_problem.empty();
    return problems + (both ? "; " : "") + daemon_problem;
}

std::string Hardware::StartDaemon() const {
    try {
        daemon_.Start();
        return {};
    } catch (const Failure& failure) {
        return failure.what();
    }
}

void Hardware::MakePorts() {
    const NetworkControl device;
    ports_ = ChoosePorts();
    MakeNetwork(device);
    if (options_.router_in) {
        MoveRouter(true);
    }
}

void Hardware::MakeNetwork(const NetworkControl& device) {
    if (options_.state) {
        MakeRecordedPorts(*options_.state, device, *ports_);
        StartRecordedClients(*options_.state);
        return;
    }
    ports_->Make(kWiredPort);
    ports_->Make(kWirelessPort);
    if (options_.sets_address) {
        SetWiredAddress(device);
    }
}

void Hardware::Execute(const std::string& order) {
    if (order == "cable in" || order == "cable out") {
        MoveCable(ports_.get(), order == "cable in");
    } else if (order == "adapter in") {
        PlugAdapter();
    } else if (order == "adapter out") {
        PullAdapter();
    } else if (order == "router in" || order == "router out") {
        MoveRouter(order == "router in");
    } else {
        throw Failure("unknown order: " + order);
    }
}

// The list of USB devices changes first here and last in PlugAdapter(): as long as the list shows
// the adapter, its interface and its daemon exist.
void Hardware::PullAdapter() {
    if (!adapter_in_) {
        return;
    }
    usb_.RemoveAdapter();
    adapter_in_ = false;
    daemon_.Stop();
    if (ports_ != nullptr) {
        ports_->Remove(kWirelessPort);
    }
}

void Hardware::PlugAdapter() {
    if (adapter_in_) {
        return;
    }
    if (ports_ != nullptr) {
        MakePort(kWirelessPort, recorded(), *ports_);
        ConnectRouter();
    }
    const std::string problem = StartDaemon();
    usb_.RestoreAdapter();
    adapter_in_ = true;
    if (!problem.empty()) {
        throw Failure(problem);
    }
}

void Hardware::MoveRouter(bool in) {
    if (options_.router_folder.empty()) {
        throw Failure("this device has no router", "start the device with --real");
    }
    if (!in) {
        router_.reset();
    } else if (router_ == nullptr) {
        router_ = std::make_unique<Router>(options_.router_folder);
        ConnectRouter();
    }
}

// Only tap interfaces can be connected to the router.
void Hardware::ConnectRouter() {
    auto* const taps = dynamic_cast<TapPorts*>(ports_.get());
    if (router_ != nullptr && taps != nullptr) {
        taps->Connect(kWiredPort, router_->ports(), kRouterWiredPort);
        taps->Connect(kWirelessPort, router_->ports(), kRouterWirelessPort);
    }
}

std::vector<pollfd> Hardware::PollFds() const {
    std::vector<pollfd> poll_fds;
    if (ports_ != nullptr) {
        poll_fds = ports_->PollFds();
    }
    if (router_ != nullptr) {
        const std::vector<pollfd> more = router_->ports().PollFds();
        poll_fds.insert(poll_fds.end(), more.begin(), more.end());
    }
    return poll_fds;
}

// Each ignores descriptors that are not its own.
void Hardware::ForwardFrame(const pollfd& ready) {
    if (ports_ != nullptr) {
        ports_->ForwardFrame(ready);
    }
    if (router_ != nullptr) {
        router_->ports().ForwardFrame(ready);
    }
}

}  // namespace sandbox
