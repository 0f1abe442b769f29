// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// veth_ports.cpp - veth interfaces: the other end of the cable is in a private namespace.
#include "sandbox/hardware/veth_ports.h"

#include <net/if.h>

#include "sandbox/hardware/netns_scope.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/programs.h"

namespace sandbox {
namespace {

// PID 1 is the first process of the device.
constexpr char kDeviceNetwork[] = "/proc/1/ns/net";

NetworkControl ControlOf(const velk::UniqueFd& network) {
    const NetnsScope scope(network);
    return NetworkControl();
}

void RunIp(std::vector<std::string> words) {
    words.insert(words.begin(), {FindProgram("ip"), "link"});
    if (words.front().empty()) {
        throw Failure("ip(8) is not installed and /dev/net/tun cannot be opened");
    }
    if (RunProgram(words) != 0) {
        throw Failure("ip(8) failed");
    }
}

}  // namespace

VethPorts::VethPorts() : network_(MakeNetwork()), cables_(ControlOf(network_)) {
}

void VethPorts::Make(const Port& port) {
    const NetnsScope scope(network_);
    RunIp({"add", port.cable, "type", "veth", "peer", "name", port.name, "netns", kDeviceNetwork});
    device_.SetHardwareAddress(port.name, port.address);
    device_.BringUp(port.name);
    SetCarrier(port, true);
}

void VethPorts::Remove(const Port& port) {
    const NetnsScope scope(network_);
    // A process of the device may have deleted the interface, and its cable with it.
    if (if_nametoindex(port.cable) != 0) {
        RunIp({"del", port.cable});
    }
}

void VethPorts::SetCarrier(const Port& port, bool carrier) {
    if (carrier) {
        cables_.BringUp(port.cable);
    } else {
        cables_.BringDown(port.cable);
    }
}

}  // namespace sandbox
