// hardware_process.h - the process that holds the device's cable, adapter and router.
#ifndef SANDBOX_HARDWARE_PROCESS_H_
#define SANDBOX_HARDWARE_PROCESS_H_

#include <string>

#include "sandbox/hardware.h"

namespace sandbox {

// Starts the process on the device that this process is the first process of. Returns once all
// works, with what does not in one line, or an empty text.
std::string StartHardware(const HardwareOptions& options);

// Moves a part of the device this process runs on: "cable", "adapter" or "router", "in" or "out".
// The effect is there on return. Throws Failure, also when this is not a device.
void MoveHardware(const std::string& part, const std::string& position);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_PROCESS_H_
