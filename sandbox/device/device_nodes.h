// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_nodes.h - a /dev without the hardware and the log of the machine.
#ifndef SANDBOX_DEVICE_DEVICE_NODES_H_
#define SANDBOX_DEVICE_DEVICE_NODES_H_

#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct DeviceNode {
    std::string path;
    velk::UniqueFd mount_fd;
};

// Opens the nodes that a device shares with the machine, and the terminal of this process as
// /dev/console. Skips nodes that the machine lacks. Must run before /dev is replaced. If /dev is
// made read-only first, the device cannot change the modes of the nodes.
std::vector<DeviceNode> OpenDeviceNodes();

// Mounts a /dev with these nodes, private pseudo-terminals and an empty /dev/shm. Throws Failure.
void MountDeviceNodes(const std::vector<DeviceNode>& nodes);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_NODES_H_
