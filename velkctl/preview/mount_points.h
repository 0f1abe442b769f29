// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// mount_points.h - the mounts of this process.
#ifndef VELKCTL_PREVIEW_MOUNT_POINTS_H_
#define VELKCTL_PREVIEW_MOUNT_POINTS_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// Returns the mount points of this process, each once.
std::vector<std::string> MountPoints();

// Returns the mount point in a line of /proc/self/mountinfo. The kernel writes a blank in a path as
// "\040".
std::string MountPointIn(std::string_view line);

// Makes the mount at this path read-only, but not other mounts of the same file system. Returns
// false with errno if the kernel refuses. A mount that this user cannot reach is no failure.
bool MakeReadOnly(const std::string& path);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_MOUNT_POINTS_H_
