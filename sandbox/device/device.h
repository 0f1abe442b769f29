// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device.h - moves a process onto a simulated device.
//
// The process gets private mount, network, host name and IPC namespaces. The paths that the library
// reads and writes hold the device's files. Changes are private and end with the last process of
// the device. This guards against accidents, not against a program that tries to escape.
#ifndef SANDBOX_DEVICE_DEVICE_H_
#define SANDBOX_DEVICE_DEVICE_H_

#include <string>
#include <vector>

#include "sandbox/device/sample_files.h"
#include "sandbox/process/failure.h"

namespace sandbox {

struct DeviceOptions {
    // Folder of the device's files. Each file appears under its own absolute path. Empty: the
    // device has its folders, but no files.
    std::string rootfs;
    // More files of the device. They replace files of the machine at the same paths.
    std::vector<SampleFile> files;
    // Files of the machine that the device does not have, and folders that other devices have.
    std::vector<std::string> hidden_files;
    std::vector<std::string> missing_folders;
    // Folders that stay visible even below a private folder.
    std::vector<std::string> bind_folders;
    // Folders of the machine that stay visible and writable.
    std::vector<std::string> writable;
    // The device gets a copy of the whole machine that it may change. Root only.
    bool copy_machine = false;
    // Everything of the machine that is not in `writable` becomes read-only.
    bool protect_machine = true;
    // The caller is the first process of a new PID namespace and gets the /proc of it.
    bool own_processes = false;
};

// Drops the capabilities that a device must not have, above all the right to set the clock, which
// the device shares with the machine. An ordinary user first enters a user namespace and is root
// there. EnterDevice() calls this first. Call it separately to fork before EnterDevice().
// Throws Failure. The process must have one thread.
void GiveUpPrivileges();

// Moves the calling process onto a device. The current folder stays the same, or becomes "/" if it
// is hidden on the device. Throws Failure if the kernel refuses; the process must then end. The
// process must have one thread.
void EnterDevice(const DeviceOptions& options);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_H_
