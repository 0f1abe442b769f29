// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// mounts.h - the mount calls of the kernel, with error messages.
#ifndef SANDBOX_DEVICE_MOUNTS_H_
#define SANDBOX_DEVICE_MOUNTS_H_

#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Size limit of a tmpfs, so that a runaway program cannot fill the memory of the machine.
inline constexpr unsigned kUsualMegabytes = 64;

// Mounts an empty tmpfs of at most this size. Returns its device number.
dev_t MountTmpfs(const std::string& folder, mode_t mode, unsigned megabytes = kUsualMegabytes);

// Mounts a file system of the kernel, such as "proc". Returns false, with errno, if that fails.
bool MountKernel(const char* type, const char* folder, unsigned long flags);

// Opens a detached clone of the mount of a file or folder, with all mounts below it. Later mounts
// over it, and later changes of its flags, do not affect the clone. `folder` is AT_FDCWD or an open
// folder that `name` is relative to. Returns no descriptor, with errno, if that fails.
velk::UniqueFd OpenMount(int folder, const std::string& name);

// Attaches the clone at `path`, which must exist and be of the same kind. TryAttachMount() returns
// false, with errno, if that fails. AttachMount() throws Failure.
bool TryAttachMount(const velk::UniqueFd& mount_fd, const std::string& path);
void AttachMount(const velk::UniqueFd& mount_fd, const std::string& path);

// Makes all mounts at `path` and below read-only.
void MakeReadOnly(const std::string& path);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_MOUNTS_H_
