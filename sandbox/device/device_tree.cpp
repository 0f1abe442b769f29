// device_tree.cpp - the part of the file tree that belongs to the device.
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
    // mkdir(2) alone would leave the mode to the caller's umask.
    if (mkdir(folder.c_str(), mode) == -1 || chmod(folder.c_str(), mode) == -1) {
        Fail("cannot make " + folder.string(), errno);
    }
}

std::vector<std::string> EntriesOf(int folder) {
    std::vector<std::string> names;
    DIR* listing = fdopendir(dup(folder));
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

// An entry removed meanwhile is no loss, and one that this user cannot even look at would be of no
// use on the device.
void PassOverOrFail(const fs::path& path, int error) {
    if (error != ENOENT && error != EACCES) {
        Fail("cannot take hold of " + path.string(), error);
    }
}

void RepeatLink(int folder, const std::string& name, const fs::path& path) {
    char target[PATH_MAX];
    const ssize_t size = readlinkat(folder, name.c_str(), target, sizeof(target) - 1);
    if (size == -1) {
        PassOverOrFail(path, errno);
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

// Lets an entry of a folder, open as `folder`, appear at `path`.
void ShowEntry(int folder, const std::string& name, const fs::path& path) {
    struct stat status;
    if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == -1) {
        PassOverOrFail(path, errno);
        return;
    }
    if (S_ISLNK(status.st_mode)) {
        RepeatLink(folder, name, path);
        return;
    }
    const velk::UniqueFd held = Hold(folder, name);
    if (held.get() == -1) {
        PassOverOrFail(path, errno);
        return;
    }
    MakeMountPoint(path, S_ISDIR(status.st_mode));
    if (!TryAttach(held, path)) {
        const int error = errno;
        (void)remove(path.c_str());
        PassOverOrFail(path, error);
    }
}

}  // namespace

fs::path DeviceTree::Resolve(const fs::path& path) {
    return fs::weakly_canonical(path.parent_path()) / path.filename();
}

void DeviceTree::Adopt(const fs::path& folder) {
    struct stat status;
    if (stat(folder.c_str(), &status) == -1) {
        Fail("cannot look at " + folder.string(), errno);
    }
    devices_.insert(status.st_dev);
}

bool DeviceTree::IsPrivate(const fs::path& folder) const {
    struct stat status;
    return stat(folder.c_str(), &status) == 0 && devices_.contains(status.st_dev);
}

void DeviceTree::Cover(const fs::path& folder, mode_t mode) {
    if (IsMissing(folder)) {
        MakeFolder(folder, mode);
        return;
    }
    devices_.insert(MountMemory(folder, mode));
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
        throw Failure("the device needs a folder in /, which cannot be replaced");
    }
    const velk::UniqueFd original(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status;
    if (original.get() == -1 || fstat(original.get(), &status) == -1) {
        Fail("cannot look into " + folder.string(), errno);
    }
    devices_.insert(MountMemory(folder, status.st_mode));
    for (const std::string& name : EntriesOf(original.get())) {
        if (!claimed_.contains(folder / name)) {
            ShowEntry(original.get(), name, folder / name);
        }
    }
}

}  // namespace sandbox
