// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// capabilities.h - drops the capabilities that reach the machine itself.
#ifndef SANDBOX_DEVICE_CAPABILITIES_H_
#define SANDBOX_DEVICE_CAPABILITIES_H_

namespace sandbox {

// True if this process may make namespaces and drop capabilities permanently.
bool IsPrivileged();

// Removes the capabilities that reach the machine itself from the sets of this process.
void ClearMachineCapabilities();

// Removes them from the bounding set, too, so that no program gets them back. Throws Failure unless
// the kernel confirms that CAP_SYS_TIME is dropped.
void DropMachineCapabilities();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_CAPABILITIES_H_
