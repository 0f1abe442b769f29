// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recorded_network.cpp - the interfaces and DHCP clients of a captured device.
#include "sandbox/hardware/recorded_network.h"

#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include <unistd.h>

#include "sandbox/process/failure.h"
#include "sandbox/process/programs.h"

namespace sandbox {
namespace {

void MakeIfPresent(const Port& port, const RecordedState& state, Ports& ports) {
    const RecordedInterface* recorded = state.Find(port.name);
    if (recorded != nullptr && recorded->link != Link::kMissing) {
        MakePort(port, &state, ports);
    }
}

// The kernel shows a lost link after up to a second.
void WaitForLostLink(const Port& port, const NetworkControl& device) {
    constexpr int kSteps = 300;
    for (int i = 0; i < kSteps && device.IsRunning(port.name); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void SetLink(const Port& port, const RecordedState& state, const NetworkControl& device,
             Ports& ports) {
    const RecordedInterface* recorded = state.Find(port.name);
    if (recorded == nullptr) {
        return;
    }
    if (recorded->link == Link::kNoLink) {
        ports.SetCarrier(port, false);
        WaitForLostLink(port, device);
    } else if (recorded->link == Link::kDown) {
        device.BringDown(port.name);
    }
}

void SetGateways(const RecordedState& state, const NetworkControl& device) {
    for (const RecordedInterface& interface : state.interfaces) {
        if (interface.gateway) {
            device.SetGateway(interface.name, {.gateway = *interface.gateway});
        }
    }
}

// The arguments after the script are there for those who look for a client. A shell has no other
// use for them.
[[noreturn]] void RunClient(const RecordedClient& client) {
    std::vector<std::string> words = {"dhclient",      "-c",  "while :; do sleep 3600; done",
                                      "dhclient",      "-lf", client.lease_file,
                                      client.interface};
    (void)execv("/bin/sh", ArgumentsOf(words).data());
    _exit(1);
}

}  // namespace

void MakePort(const Port& port, const RecordedState* state, Ports& ports) {
    const RecordedInterface* recorded = state == nullptr ? nullptr : state->Find(port.name);
    Port own = port;
    if (recorded != nullptr && recorded->hardware_address) {
        own.address = *recorded->hardware_address;
    }
    ports.Make(own);
}

void MakeRecordedPorts(const RecordedState& state, const NetworkControl& device, Ports& ports) {
    MakeIfPresent(kWiredPort, state, ports);
    MakeIfPresent(kWirelessPort, state, ports);
    for (const RecordedAddress& address : state.addresses) {
        device.SetAddress(address.label, address.address);
    }
    SetGateways(state, device);
    const RecordedInterface* wired = state.Find(kWiredPort.name);
    if (PortsKeepSpeed() && state.link_mode && wired != nullptr && wired->link != Link::kMissing) {
        device.SetLinkMode(kWiredPort.name, *state.link_mode);
    }
    SetLink(kWiredPort, state, device, ports);
    SetLink(kWirelessPort, state, device, ports);
}

void StartRecordedClients(const RecordedState& state) {
    for (const RecordedClient& client : state.clients) {
        const pid_t process = fork();
        if (process == -1) {
            Fail("cannot start a process", errno);
        }
        if (process == 0) {
            RunClient(client);
        }
    }
}

}  // namespace sandbox
