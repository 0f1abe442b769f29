// namespaces.h - the namespaces of a device, before anything is mounted in them.
#ifndef SANDBOX_DEVICE_NAMESPACES_H_
#define SANDBOX_DEVICE_NAMESPACES_H_

#include <sys/types.h>

namespace sandbox {

// Makes this process root of a new user namespace, whoever it was outside.
void EnterUserNamespace();

// fork(2) into a new PID namespace. The kernel ends all its processes when the first one ends.
pid_t ForkFirstProcess();

// Enters mount, network, host name and IPC namespaces. No mount made from here on is seen outside.
void EnterPrivateNamespaces();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_NAMESPACES_H_
