// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// mounts.cpp - the mount calls of the kernel, with error messages.
#include "sandbox/device/mounts.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr char kSource[] = "velk";  // source of the device's mounts in /proc/mounts
constexpr mode_t kModeBits = 07777;
constexpr unsigned kFilesPerMegabyte = 256;  // empty files use memory, too

// Replaces open_tree(2), which Valgrind does not support. The descriptor stays valid under later
// mounts. Unlike a clone, it shares later changes of the mount's flags, which is sufficient for a
// device that leaves the machine writable.
velk::UniqueFd OpenByPath(int folder, const std::string& name) {
    return velk::UniqueFd(openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
}

bool BindByPath(const velk::UniqueFd& mount_fd, const std::string& path) {
    const std::string source = "/proc/self/fd/" + std::to_string(mount_fd.get());
    return mount(source.c_str(), path.c_str(), "none", MS_BIND | MS_REC, nullptr) == 0;
}

}  // namespace

dev_t MountTmpfs(const std::string& folder, mode_t mode, unsigned megabytes) {
    char options[64];
    (void)snprintf(options, sizeof(options), "mode=%04o,size=%um,nr_inodes=%u", mode & kModeBits,
                   megabytes, megabytes * kFilesPerMegabyte);
    if (mount(kSource, folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options) == -1) {
        Fail("cannot mount a tmpfs at " + folder, errno);
    }
    struct stat status;
    if (stat(folder.c_str(), &status) == -1) {
        Fail("cannot read " + folder, errno);
    }
    return status.st_dev;
}

bool MountKernel(const char* type, const char* folder, unsigned long flags) {
    return mount(kSource, folder, type, MS_NOSUID | MS_NODEV | MS_NOEXEC | flags, nullptr) == 0;
}

velk::UniqueFd OpenMount(int folder, const std::string& name) {
    const unsigned flags = OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_RECURSIVE | AT_SYMLINK_NOFOLLOW;
    velk::UniqueFd mount_fd(open_tree(folder, name.c_str(), flags));
    return mount_fd.get() == -1 && errno == ENOSYS ? OpenByPath(folder, name) : std::move(mount_fd);
}

bool TryAttachMount(const velk::UniqueFd& mount_fd, const std::string& path) {
    if (move_mount(mount_fd.get(), "", AT_FDCWD, path.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0) {
        return true;
    }
    return errno == ENOSYS && BindByPath(mount_fd, path);
}

void AttachMount(const velk::UniqueFd& mount_fd, const std::string& path) {
    if (!TryAttachMount(mount_fd, path)) {
        Fail("cannot mount " + path, errno);
    }
}

void MakeReadOnly(const std::string& path) {
    mount_attr attributes{};
    attributes.attr_set = MOUNT_ATTR_RDONLY;
    if (mount_setattr(AT_FDCWD, path.c_str(), AT_RECURSIVE, &attributes, sizeof(attributes)) ==
        -1) {
        Fail("cannot make " + path + " read-only", errno);
    }
}

}  // namespace sandbox
