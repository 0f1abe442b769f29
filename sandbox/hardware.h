// hardware.h - the device's cable and adapter, which a process of their own holds.
#ifndef SANDBOX_HARDWARE_H_
#define SANDBOX_HARDWARE_H_

#include <string>

namespace sandbox {

// Starts the process, with cable and adapter in, on the device that this process is the first
// process of. Returns once they work, with what does not in one line, or an empty text. The
// wireless daemon is looked for in `program_folder`.
std::string StartHardware(const std::string& program_folder);

// Moves a part of the device this process runs on: "cable" or "adapter", "in" or "out". The effect
// is there on return. Throws Failure, also when this is not a device.
void MoveHardware(const std::string& part, const std::string& position);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_H_
