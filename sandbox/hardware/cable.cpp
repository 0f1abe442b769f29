// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// cable.cpp - the cable of eth0.
#include "sandbox/hardware/cable.h"

#include "sandbox/process/failure.h"

namespace sandbox {

void MoveCable(Ports* ports, bool in) {
    if (ports == nullptr) {
        throw Failure("this device has no interfaces, so it has no cable");
    }
    ports->SetCarrier(kWiredPort, in);
}

}  // namespace sandbox
