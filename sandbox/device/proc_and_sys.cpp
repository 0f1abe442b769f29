// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proc_and_sys.cpp - /proc and /sys of the device's namespaces.
#include "sandbox/device/proc_and_sys.h"

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mount.h>

#include "lib/base/unique_fd.h"
#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kNetworkSettings[] = "/proc/sys/net";

bool IsProcess(const fs::path& path) {
    return isdigit(static_cast<unsigned char>(path.filename().native().front())) != 0;
}

// True for folders and writable files. Links point to processes or to other entries.
bool ReachesMachine(const fs::directory_entry& entry) {
    constexpr fs::perms kWritable =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const fs::file_status status = entry.symlink_status();
    return !IsProcess(entry.path()) && !fs::is_symlink(status) &&
           (fs::is_directory(status) || (status.permissions() & kWritable) != fs::perms::none);
}

std::vector<std::string> MachineEntries() {
    std::vector<std::string> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        if (ReachesMachine(entry)) {
            entries.push_back(entry.path());
        }
    }
    return entries;
}

velk::UniqueFd OpenEntry(const std::string& path) {
    velk::UniqueFd mount_fd = OpenMount(AT_FDCWD, path);
    if (mount_fd.get() == -1) {
        Fail("cannot open " + path, errno);
    }
    return mount_fd;
}

void ProtectMachineEntries() {
    // These settings belong to the network namespace of the device and stay writable.
    const velk::UniqueFd network = OpenEntry(kNetworkSettings);
    for (const std::string& entry : MachineEntries()) {
        AttachMount(OpenEntry(entry), entry);
        MakeReadOnly(entry);
    }
    AttachMount(network, kNetworkSettings);
}

}  // namespace

void MountProc(bool protect) {
    if (!MountKernel("proc", "/proc", 0)) {
        const int error = errno;
        Fail("cannot mount /proc", error,
             error == EPERM
                 ? "start the container with --privileged, or remove the mounts below /proc"
                 : "");
    }
    if (protect) {
        ProtectMachineEntries();
    }
}

void MountSys() {
    // If this fails, /sys shows the names of the machine's interfaces.
    (void)MountKernel("sysfs", "/sys", MS_RDONLY);
}

}  // namespace sandbox
