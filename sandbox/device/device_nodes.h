// device_nodes.h - a /dev that reaches no hardware of the machine, nor its log.
#ifndef SANDBOX_DEVICE_DEVICE_NODES_H_
#define SANDBOX_DEVICE_DEVICE_NODES_H_

#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct DeviceNode {
    std::string path;
    velk::UniqueFd held;
};

// Takes hold of the machine's nodes that a device has too, and of this process's terminal, if it
// has one, as /dev/console. Leaves out a node that the machine lacks. Call it while the machine's
// /dev is there, and after that was made read-only if the device must not change the modes of the
// nodes.
std::vector<DeviceNode> HoldDeviceNodes();

// Mounts a /dev with these nodes, pseudo-terminals of its own and an empty /dev/shm. Throws
// Failure.
void MountDeviceNodes(const std::vector<DeviceNode>& nodes);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_NODES_H_
