// overlay_root.h - a copy of the whole machine that a device may change.
#ifndef SANDBOX_DEVICE_OVERLAY_ROOT_H_
#define SANDBOX_DEVICE_OVERLAY_ROOT_H_

#include <filesystem>
#include <vector>

namespace sandbox {

// Moves this process, in mount namespaces of its own, onto a root folder that shows the machine's
// files and keeps every change in memory. /dev, /proc and /sys are empty there and wait to be
// mounted. Returns the folders where a file system begins that may be changed. Throws Failure.
std::vector<std::filesystem::path> EnterOverlayRoot();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_OVERLAY_ROOT_H_
