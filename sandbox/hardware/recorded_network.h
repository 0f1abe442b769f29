// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recorded_network.h - the interfaces and DHCP clients of a captured device.
#ifndef SANDBOX_HARDWARE_RECORDED_NETWORK_H_
#define SANDBOX_HARDWARE_RECORDED_NETWORK_H_

#include <string>

#include "sandbox/device/network_control.h"
#include "sandbox/device/recorded_state.h"
#include "sandbox/hardware/ports.h"

namespace sandbox {

// Makes the recorded interfaces, with their addresses, gateways and links. Throws Failure.
void MakeRecordedPorts(const RecordedState& state, const NetworkControl& device, Ports& ports);

// Makes the port with its recorded hardware address.
void MakePort(const Port& port, const RecordedState* state, Ports& ports);

// Starts a process that looks like each of the recorded DHCP clients, and does nothing. Throws
// Failure.
void StartRecordedClients(const RecordedState& state);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_RECORDED_NETWORK_H_
