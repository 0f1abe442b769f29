// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// overlay_root.cpp - a private overlay of the whole file tree of the machine.
//
// A tmpfs holds the changes. It is mounted over /tmp in the private mount namespace of this
// process, so the kernel removes it when the device ends.
#include "sandbox/device/overlay_root.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr auto& kChangesFolder = velk::kSocketFolder;  // private on the device in any case
constexpr auto kNewRoot = velk::JoinText(velk::kSocketFolder, "/root");
constexpr mode_t kFolderMode = 0755;
constexpr unsigned kMegabytes = 512;  // limit of all changes
// The file systems of the kernel, and the folders that are private in any case.
constexpr const char* kNotCopied[] = {
    "/dev", "/proc", "/run", "/sys", velk::kSocketFolder, velk::kEditFolder};

bool IsCopied(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error) &&
           std::ranges::none_of(kNotCopied, [&path](const fs::path& folder) {
               return std::ranges::mismatch(folder, path).in1 == folder.end();
           });
}

// Returns the mount points of the machine, outer ones first, without the root.
std::set<fs::path> FileSystemsBelowRoot() {
    std::set<fs::path> folders;
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream words(line);
        std::string number, parent, device, part, folder;
        words >> number >> parent >> device >> part >> folder;
        if (folder != "/" && IsCopied(folder)) {
            folders.insert(folder);
        }
    }
    return folders;
}

bool TryOverlay(const fs::path& folder, const std::string& number) {
    const std::string upper = std::string(kChangesFolder) + "/upper" + number;
    const std::string work = std::string(kChangesFolder) + "/work" + number;
    fs::create_directory(upper);
    fs::create_directory(work);
    fs::permissions(upper, fs::status(folder).permissions());
    const std::string options =
        "lowerdir=" + folder.string() + ",upperdir=" + upper + ",workdir=" + work;
    const std::string target = kNewRoot.c_str() + (folder == "/" ? std::string() : folder.string());
    return mount("velk", target.c_str(), "overlay", 0, options.c_str()) == 0;
}

// Returns false if a file system cannot be part of an overlay. It is then mounted read-only.
bool CopyFileSystem(const fs::path& folder, const std::string& number) {
    if (TryOverlay(folder, number)) {
        return true;
    }
    const velk::UniqueFd mount_fd = OpenMount(AT_FDCWD, folder);
    (void)TryAttachMount(mount_fd, kNewRoot.c_str() + folder.string());
    return false;
}

// The old root is unmounted, so it cannot be reached afterwards.
void MoveToNewRoot() {
    fs::current_path(kNewRoot.c_str());
    if (syscall(SYS_pivot_root, ".", ".") == -1 || umount2(".", MNT_DETACH) == -1) {
        Fail("cannot change the root folder", errno);
    }
    fs::current_path("/");
}

}  // namespace

std::vector<fs::path> EnterOverlayRoot() {
    const std::set<fs::path> file_systems = FileSystemsBelowRoot();
    (void)MountTmpfs(kChangesFolder, kFolderMode, kMegabytes);
    fs::create_directory(kNewRoot.c_str());
    if (!TryOverlay("/", "")) {
        Fail("cannot make an overlay of the root folder", errno);
    }
    std::vector<fs::path> changeable{"/"};
    int number = 0;
    for (const fs::path& file_system : file_systems) {
        if (CopyFileSystem(file_system, std::to_string(++number))) {
            changeable.push_back(file_system);
        }
    }
    MoveToNewRoot();
    return changeable;
}

}  // namespace sandbox
