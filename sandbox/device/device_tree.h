// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_tree.h - makes room for the device's files in the file tree of the machine.
#ifndef SANDBOX_DEVICE_DEVICE_TREE_H_
#define SANDBOX_DEVICE_DEVICE_TREE_H_

#include <filesystem>
#include <set>

#include <sys/types.h>

namespace sandbox {

// A folder of the machine that holds a file of the device becomes a mirror: a tmpfs in which each
// entry of the original is bind-mounted, and in which files can be made, renamed and removed.
//
// Every path is absolute and has no symlinks in its folders; see Resolve().
class DeviceTree {
  public:
    // Follows the symlinks of the folder, but not that of the last component.
    static std::filesystem::path Resolve(const std::filesystem::path& path);

    // Adds the file system of this folder to the private ones.
    void AddFileSystem(const std::filesystem::path& folder);

    // Hides the machine's entry at this path. Must be called before anything in the same folder is
    // made.
    void Hide(const std::filesystem::path& path) { hidden_.insert(path); }

    // Mounts a tmpfs over a folder of the machine. Makes the folder if it is missing.
    void MountTmpfsAt(const std::filesystem::path& folder, mode_t mode);

    void MakeFolder(const std::filesystem::path& folder, mode_t mode);
    // Mirrors the folder unless it is private already, or makes it.
    void MakePrivate(const std::filesystem::path& folder);

    bool IsPrivate(const std::filesystem::path& path) const;

  private:
    void Mirror(const std::filesystem::path& folder);

    std::set<std::filesystem::path> hidden_;
    std::set<dev_t> devices_;  // private file systems
};

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_TREE_H_
