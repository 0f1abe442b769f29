// capabilities.h - what a device may not do to the machine it runs on.
#ifndef SANDBOX_DEVICE_CAPABILITIES_H_
#define SANDBOX_DEVICE_CAPABILITIES_H_

namespace sandbox {

// True when this process may make namespaces and give up capabilities for good.
bool IsPrivileged();

// Takes the capabilities that reach the machine itself out of the sets this process has.
void ClearMachineCapabilities();

// Does so for good, with the bounding set, and throws Failure unless the kernel confirms that the
// clock is out of reach.
void DropMachineCapabilities();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_CAPABILITIES_H_
