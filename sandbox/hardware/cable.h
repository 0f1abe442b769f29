// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// cable.h - the cable of eth0.
#ifndef SANDBOX_HARDWARE_CABLE_H_
#define SANDBOX_HARDWARE_CABLE_H_

#include "sandbox/hardware/ports.h"

namespace sandbox {

// Connects or disconnects the cable of eth0. `ports` is null if the device has no interfaces.
// Throws Failure.
void MoveCable(Ports* ports, bool in);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_CABLE_H_
