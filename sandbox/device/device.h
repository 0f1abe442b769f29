// device.h - moves a process onto a device of its own.
//
// The process gets private mount, network, host name and IPC namespaces in which the places the
// library reads and writes hold the device's files. What it changes there nobody else sees, and it
// is gone with the last process of the device. This guards against accidents, not against a
// program that wants to get out.
#ifndef SANDBOX_DEVICE_DEVICE_H_
#define SANDBOX_DEVICE_DEVICE_H_

#include <string>
#include <vector>

#include "sandbox/device/sample_files.h"
#include "sandbox/process/failure.h"

namespace sandbox {

struct DeviceOptions {
    // Folder whose files become the device's, each under its own absolute path. Empty: the places
    // are there, without files.
    std::string rootfs;
    // More of the device's files. They come before what the machine has at their paths.
    std::vector<SampleFile> files;
    // Folders that stay visible although one of the private places hides them.
    std::vector<std::string> keep;
    // Folders of the machine that stay visible and writable.
    std::vector<std::string> writable;
    // The device gets a copy of the whole machine that it may change. Root only.
    bool copy_machine = false;
    // Everything of the machine that is not in `writable` becomes read-only.
    bool protect_machine = true;
    // The caller is the first process of a new PID namespace: it gets a /proc of that namespace.
    bool own_processes = false;
};

// Gives up what no device needs, setting the clock above all, for good: the clock is the one thing
// here that would be the machine's. Anyone but root moves into a user namespace to do so, and is
// root there. EnterDevice() begins with this; call it alone to fork before moving.
// Throws Failure. The process must have one thread.
void GiveUpPrivileges();

// Moves the calling process onto a device. Afterwards it stands in the folder it stood in, or in
// "/" where that is hidden. Throws Failure with a plain reason when the kernel refuses; the process
// is then fit for nothing but ending. The process must have one thread.
void EnterDevice(const DeviceOptions& options);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_H_
