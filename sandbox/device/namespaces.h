// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// namespaces.h - the namespaces of a device, before anything is mounted in them.
#ifndef SANDBOX_DEVICE_NAMESPACES_H_
#define SANDBOX_DEVICE_NAMESPACES_H_

#include <sys/types.h>

namespace sandbox {

// Enters a new user namespace, in which this process is root.
void EnterUserNamespace();

// Forks the first process of a new PID namespace. If it ends, the kernel ends all others.
pid_t ForkFirstProcess();

// Enters private mount, network, host name and IPC namespaces. Later mounts are not seen outside.
void EnterPrivateNamespaces();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_NAMESPACES_H_
