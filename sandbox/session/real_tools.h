// real_tools.h - a device that lives on the system's own tools.
#ifndef SANDBOX_SESSION_REAL_TOOLS_H_
#define SANDBOX_SESSION_REAL_TOOLS_H_

#include <string>

#include "sandbox/device/device.h"

namespace sandbox {

// Throws Failure, with the reason, where there can be none: for lack of rights, taps or tools.
void RefuseUnlessReal();

// Adds the files under `folder`, except those that the device has anyway.
void AddRealFiles(const std::string& folder, DeviceOptions& device);

// Starts the device's services and its wired port. Returns when they are up; they say themselves
// what does not work.
void Boot();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_REAL_TOOLS_H_
