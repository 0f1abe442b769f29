// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bind_folders.h - folders of the machine that are bind-mounted on the device.
#ifndef SANDBOX_DEVICE_BIND_FOLDERS_H_
#define SANDBOX_DEVICE_BIND_FOLDERS_H_

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct BindFolder {
    std::filesystem::path path;  // without symlinks
    velk::UniqueFd mount_fd;
};

// Opens the mounts of folders in their present state. Throws Failure if a folder does not exist.
std::vector<BindFolder> OpenBindFolders(const std::vector<std::string>& folders);

// Bind-mounts each folder for which `wanted` is true at its own path. Makes a missing path.
void BindMountFolders(const std::vector<BindFolder>& folders,
                      const std::function<bool(const std::filesystem::path&)>& wanted);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_BIND_FOLDERS_H_
