// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ports.cpp - chooses between tap and veth interfaces.
#include "sandbox/hardware/ports.h"

#include "sandbox/hardware/tap_ports.h"
#include "sandbox/hardware/veth_ports.h"

namespace sandbox {

bool PortsKeepSpeed() {
    return TapPorts::IsAvailable();
}

std::unique_ptr<Ports> ChoosePorts() {
    if (TapPorts::IsAvailable()) {
        return std::make_unique<TapPorts>();
    }
    return std::make_unique<VethPorts>();
}

}  // namespace sandbox
