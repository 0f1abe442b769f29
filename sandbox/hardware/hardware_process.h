// hardware_process.h - the process that holds the device's cable, adapter and router.
#ifndef SANDBOX_HARDWARE_HARDWARE_PROCESS_H_
#define SANDBOX_HARDWARE_HARDWARE_PROCESS_H_

#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/hardware/hardware.h"

namespace sandbox {

// Starts the process on the device that this process is the first process of. It takes orders from
// outside at the door. Returns once all works, with what does not in one line, or an empty text.
std::string StartHardware(const HardwareOptions& options, velk::UniqueFd door);

// Moves a part of the device of that name: "cable", "adapter" or "router", "in" or "out". Without a
// name it is the device this process runs on, or the only one that is running. The effect is there
// on return. Throws Failure.
void MoveHardware(const std::string& part, const std::string& position, const std::string& device);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_HARDWARE_PROCESS_H_
