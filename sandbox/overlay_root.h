// overlay_root.h - a copy of the whole machine that a device may change.
#ifndef SANDBOX_OVERLAY_ROOT_H_
#define SANDBOX_OVERLAY_ROOT_H_

namespace sandbox {

// Moves this process, in mount namespaces of its own, onto a root folder that shows the machine's
// files and keeps every change in memory. /dev, /proc and /sys are empty there and wait to be
// mounted. Throws Failure.
void EnterOverlayRoot();

}  // namespace sandbox

#endif  // SANDBOX_OVERLAY_ROOT_H_
