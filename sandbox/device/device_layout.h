// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_layout.h - the folders and files of a device.
#ifndef SANDBOX_DEVICE_DEVICE_LAYOUT_H_
#define SANDBOX_DEVICE_DEVICE_LAYOUT_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

#include "sandbox/device/device_tree.h"
#include "sandbox/device/sample_files.h"

namespace sandbox {

using Modes = std::map<std::filesystem::path, mode_t>;

// All paths are resolved through the machine's symlinks, so make the layout before any mount.
struct DeviceLayout {
    Modes tmpfs_folders;  // empty at the start
    Modes folders;        // replace folders of the machine at the same paths
    std::vector<std::filesystem::path>
        files;  // replace files of the machine, with or without sample
    std::vector<SampleFile> samples;
    std::vector<std::filesystem::path> missing_folders;
};

// Makes the layout of a device with `more_files` and the files under `rootfs`. An empty `rootfs`
// means no files. The machine's files `hidden` and the folders `missing` do not exist on the
// device.
DeviceLayout MakeDeviceLayout(const std::string& rootfs, const std::vector<SampleFile>& more_files,
                              const std::vector<std::string>& hidden = {},
                              const std::vector<std::string>& missing = {});

// True for a file or folder in a folder of the device's own, or such a folder itself, and for the
// device's files in folders of the machine. The folder of the sandbox's own files, /run, is none.
bool IsDevicePath(const std::filesystem::path& path);

// True if `path` is below a tmpfs folder. The tmpfs folder itself is not hidden.
bool IsHidden(const std::filesystem::path& path, const DeviceLayout& layout);

// Returns the folder that replaces the machine's on every device and holds `path`, or an empty
// path.
std::filesystem::path PrivateFolderOf(const std::filesystem::path& path);

// True if the folder is private, but stays visible as a bind folder. A tmpfs folder itself, such as
// /tmp, does not.
bool CanStayVisible(const std::filesystem::path& folder);

// Removes the device's folders and files from a copy of the machine. Must run before any folder of
// the machine is mounted inside the copy.
void RemoveMachineContents(const DeviceLayout& layout);

// Mounts the tmpfs folders over those of the machine.
void MountTmpfsFolders(const DeviceLayout& layout, DeviceTree& tree);

// Makes the device's folders and files.
void MakeFoldersAndFiles(const DeviceLayout& layout, DeviceTree& tree);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_LAYOUT_H_
