// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// real_tools.h - prepares a device that uses the system's own tools (--real).
#ifndef SANDBOX_SESSION_REAL_TOOLS_H_
#define SANDBOX_SESSION_REAL_TOOLS_H_

#include <string>

#include "sandbox/device/device.h"

namespace sandbox {

// Throws Failure if rights, tap interfaces or tools are missing.
void CheckRealTools();

// Adds the files under `folder`, except those that the device already has.
void AddRealToolFiles(const std::string& folder, DeviceOptions& device);

// Starts the device's services and its wired port, and waits until they run. They print their own
// errors.
void RunBootScript();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_REAL_TOOLS_H_
