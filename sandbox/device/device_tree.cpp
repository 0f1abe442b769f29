// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_tree.cpp - makes room for the device's files in the file tree of the machine.
#include "sandbox/device/device_tree.h"

#include <cerrno>
#include <cstdio>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolderMode = 0755;
constexpr mode_t kMountPointMode = 0600;

bool IsMissing(const fs::path& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == -1 && errno == ENOENT;
}

void MakeDirectory(const fs::path& folder, mode_t mode) {
    // mkdir(2) alone would apply the caller's umask.
    if (mkdir(folder.c_str(), mode) == -1 || chmod(folder.c_str(), mode) == -1) {
        Fail("cannot make " + folder.string(), errno);
    }
}

std::vector<std::string> EntriesOf(int folder) {
    std::vector<std::string> names;
    DIR* listing = fdopendir(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    if (listing == nullptr) {
        Fail("cannot list a folder", errno);
    }
    while (const dirent* entry = readdir(listing)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    closedir(listing);
    return names;
}

// Ignores entries that were removed in the meantime, and entries that this user may not read: they
// would be of no use on the device.
void IgnoreOrFail(const fs::path& path, int error) {
    if (error != ENOENT && error != EACCES) {
        Fail("cannot open " + path.string(), error);
    }
}

void CopyLink(int folder, const std::string& name, const fs::path& path) {
    char target[PATH_MAX];
    const ssize_t size = readlinkat(folder, name.c_str(), target, sizeof(target) - 1);
    if (size == -1) {
        IgnoreOrFail(path, errno);
        return;
    }
    target[size] = '\0';
    if (symlink(target, path.c_str()) == -1) {
        Fail("cannot make " + path.string(), errno);
    }
}

void MakeMountPoint(const fs::path& path, bool is_folder) {
    const int result = is_folder ? mkdir(path.c_str(), kFolderMode)
                                 : mknod(path.c_str(), S_IFREG | kMountPointMode, 0);
    if (result == -1) {
        Fail("cannot make " + path.string(), errno);
    }
}

// Bind-mounts an entry of the open folder `folder` at `path`. Symlinks are copied.
void BindEntry(int folder, const std::string& name, const fs::path& path) {
    struct stat status;
    if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == -1) {
        IgnoreOrFail(path, errno);
        return;
    }
    if (S_ISLNK(status.st_mode)) {
        CopyLink(folder, name, path);
        return;
    }
    const velk::UniqueFd mount_fd = OpenMount(folder, name);
    if (mount_fd.get() == -1) {
        IgnoreOrFail(path, errno);
        return;
    }
    MakeMountPoint(path, S_ISDIR(status.st_mode));
    if (!TryAttachMount(mount_fd, path)) {
        const int error = errno;
        (void)remove(path.c_str());
        IgnoreOrFail(path, error);
    }
}

}  // namespace

fs::path DeviceTree::Resolve(const fs::path& path) {
    return fs::weakly_canonical(path.parent_path()) / path.filename();
}

void DeviceTree::AddFileSystem(const fs::path& folder) {
    struct stat status;
    if (stat(folder.c_str(), &status) == -1) {
        Fail("cannot read " + folder.string(), errno);
    }
    devices_.insert(status.st_dev);
}

bool DeviceTree::IsPrivate(const fs::path& folder) const {
    struct stat status;
    return stat(folder.c_str(), &status) == 0 && devices_.contains(status.st_dev);
}

void DeviceTree::MountTmpfsAt(const fs::path& folder, mode_t mode) {
    if (IsMissing(folder)) {
        MakeFolder(folder, mode);
        return;
    }
    devices_.insert(MountTmpfs(folder, mode));
}

void DeviceTree::MakePrivate(const fs::path& folder) {
    if (IsMissing(folder)) {
        MakeFolder(folder, kFolderMode);
        return;
    }
    if (!IsPrivate(folder)) {
        Mirror(folder);
    }
}

void DeviceTree::MakeFolder(const fs::path& folder, mode_t mode) {
    MakePrivate(folder.parent_path());
    if (IsMissing(folder)) {
        MakeDirectory(folder, mode);
    }
}

void DeviceTree::Mirror(const fs::path& folder) {
    if (folder == folder.root_path()) {
        throw Failure("cannot add a file or folder to /: the root folder cannot be mirrored");
    }
    const velk::UniqueFd original(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status;
    if (original.get() == -1 || fstat(original.get(), &status) == -1) {
        Fail("cannot read " + folder.string(), errno);
    }
    devices_.insert(MountTmpfs(folder, status.st_mode));
    for (const std::string& name : EntriesOf(original.get())) {
        if (!hidden_.contains(folder / name)) {
            BindEntry(original.get(), name, folder / name);
        }
    }
}

}  // namespace sandbox
