// mounts.h - the kernel's mount calls, failing with plain words.
#ifndef SANDBOX_DEVICE_MOUNTS_H_
#define SANDBOX_DEVICE_MOUNTS_H_

#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// A program of the device that never stops writing must not take the machine's memory.
inline constexpr unsigned kUsualMegabytes = 64;

// Mounts an empty file system that lives in memory and holds so much at most. Returns its device
// number.
dev_t MountMemory(const std::string& folder, mode_t mode, unsigned megabytes = kUsualMegabytes);

// Mounts a file system of the kernel's, such as "proc". False, with errno, when it is refused.
bool MountKernel(const char* type, const char* folder, unsigned long flags);

// Takes hold of a file or folder with everything mounted below it, as it is now: whatever is
// mounted over it later, or made of its flags, leaves the hold alone. No descriptor, with errno,
// when that fails. `folder` is AT_FDCWD or an open folder that `name` is relative to.
velk::UniqueFd Hold(int folder, const std::string& name);

// Lets what is held appear at `path`, which exists and is of the same kind. Failing throws, or is
// told with errno.
bool TryAttach(const velk::UniqueFd& held, const std::string& path);
void Attach(const velk::UniqueFd& held, const std::string& path);

// Makes everything mounted at `path` and below read-only.
void MakeReadOnly(const std::string& path);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_MOUNTS_H_
