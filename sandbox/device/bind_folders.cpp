// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bind_folders.cpp - folders of the machine that are bind-mounted on the device.
#include "sandbox/device/bind_folders.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>

#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

BindFolder OpenBindFolder(const std::string& folder) {
    std::error_code error;
    fs::path path = fs::canonical(folder, error);
    if (error) {
        Fail("cannot open " + folder, error.value());
    }
    velk::UniqueFd mount_fd = OpenMount(AT_FDCWD, path);
    if (mount_fd.get() == -1) {
        Fail("cannot open " + folder, errno);
    }
    return {std::move(path), std::move(mount_fd)};
}

}  // namespace

std::vector<BindFolder> OpenBindFolders(const std::vector<std::string>& folders) {
    std::vector<BindFolder> bind_folders;
    bind_folders.reserve(folders.size());
    for (const std::string& folder : folders) {
        bind_folders.push_back(OpenBindFolder(folder));
    }
    return bind_folders;
}

void BindMountFolders(const std::vector<BindFolder>& folders,
                      const std::function<bool(const fs::path&)>& wanted) {
    for (const BindFolder& folder : folders) {
        if (!wanted(folder.path)) {
            continue;
        }
        std::error_code error;
        fs::create_directories(folder.path, error);
        if (error) {
            Fail("cannot make " + folder.path.string(), error.value());
        }
        AttachMount(folder.mount_fd, folder.path);
    }
}

}  // namespace sandbox
