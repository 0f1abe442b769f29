// bind_folders.h - folders of the machine that stay what they are on the device.
#ifndef SANDBOX_DEVICE_BIND_FOLDERS_H_
#define SANDBOX_DEVICE_BIND_FOLDERS_H_

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct KeptFolder {
    std::filesystem::path path;  // without symlinks
    velk::UniqueFd held;
};

// Takes hold of folders as they are now. Throws Failure for one that is not there.
std::vector<KeptFolder> HoldFolders(const std::vector<std::string>& folders);

// Lets each folder that is `wanted` appear at its path again, which is made when it has gone.
void ShowFolders(const std::vector<KeptFolder>& folders,
                 const std::function<bool(const std::filesystem::path&)>& wanted);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_BIND_FOLDERS_H_
