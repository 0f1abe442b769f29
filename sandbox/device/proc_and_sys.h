// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proc_and_sys.h - /proc and /sys of the device's namespaces.
#ifndef SANDBOX_DEVICE_PROC_AND_SYS_H_
#define SANDBOX_DEVICE_PROC_AND_SYS_H_

namespace sandbox {

// Mounts the /proc of this PID namespace. With `protect`, all its entries except those of processes
// and of network settings are read-only.
void MountProc(bool protect);

// Mounts, read-only, the /sys of this network namespace.
void MountSys();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_PROC_AND_SYS_H_
