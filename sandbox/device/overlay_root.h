// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// overlay_root.h - a private overlay of the whole file tree of the machine.
#ifndef SANDBOX_DEVICE_OVERLAY_ROOT_H_
#define SANDBOX_DEVICE_OVERLAY_ROOT_H_

#include <filesystem>
#include <vector>

namespace sandbox {

// Changes the root folder of this process to an overlay: it shows the machine's files and keeps all
// changes in memory. The process must be in a private mount namespace. /dev, /proc and /sys are
// empty there; the caller mounts them. Returns the mount points of the writable file systems.
// Throws Failure.
std::vector<std::filesystem::path> EnterOverlayRoot();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_OVERLAY_ROOT_H_
