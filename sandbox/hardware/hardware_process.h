// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hardware_process.h - the process that simulates the cable, adapter and router.
#ifndef SANDBOX_HARDWARE_HARDWARE_PROCESS_H_
#define SANDBOX_HARDWARE_HARDWARE_PROCESS_H_

#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/hardware/hardware.h"

namespace sandbox {

// Starts the hardware process. The caller is the first process of the device. Orders from outside
// arrive at `control_socket`. Returns once the hardware is ready: one line of problems, or an empty
// text.
std::string StartHardware(const HardwareOptions& options, velk::UniqueFd control_socket);

// Moves "cable", "adapter" or "router" of the device of that name "in" or "out". An empty name
// means the device of this process, or the only running one. The part has moved on return. Throws
// Failure.
void MoveHardware(const std::string& part, const std::string& position, const std::string& device);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_HARDWARE_PROCESS_H_
