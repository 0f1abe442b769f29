// bind_folders.cpp - folders of the machine that stay what they are on the device.
#include "sandbox/device/bind_folders.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>

#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

KeptFolder HoldFolder(const std::string& folder) {
    std::error_code error;
    fs::path path = fs::canonical(folder, error);
    if (error) {
        Fail("cannot keep " + folder, error.value());
    }
    velk::UniqueFd held = Hold(AT_FDCWD, path);
    if (held.get() == -1) {
        Fail("cannot keep " + folder, errno);
    }
    return {std::move(path), std::move(held)};
}

}  // namespace

std::vector<KeptFolder> HoldFolders(const std::vector<std::string>& folders) {
    std::vector<KeptFolder> kept;
    kept.reserve(folders.size());
    for (const std::string& folder : folders) {
        kept.push_back(HoldFolder(folder));
    }
    return kept;
}

void ShowFolders(const std::vector<KeptFolder>& folders,
                 const std::function<bool(const fs::path&)>& wanted) {
    for (const KeptFolder& folder : folders) {
        if (!wanted(folder.path)) {
            continue;
        }
        std::error_code error;
        fs::create_directories(folder.path, error);
        if (error) {
            Fail("cannot make " + folder.path.string(), error.value());
        }
        Attach(folder.held, folder.path);
    }
}

}  // namespace sandbox
