// device_tree.h - the part of the file tree that belongs to the device.
#ifndef SANDBOX_DEVICE_DEVICE_TREE_H_
#define SANDBOX_DEVICE_DEVICE_TREE_H_

#include <filesystem>
#include <set>

#include <sys/types.h>

namespace sandbox {

// Makes room for the device's files among the machine's. A folder of the machine that has to hold
// one becomes a mirror: a folder in memory in which each entry of the original appears, but which
// takes new files and lets them be written, renamed and removed like any others.
//
// Every path is absolute and free of symlinks in its folders; see Resolve().
class DeviceTree {
  public:
    // The path with the symlinks of its folder followed, those of its last component not.
    static std::filesystem::path Resolve(const std::filesystem::path& path);

    // Takes the file system of this folder for the device's own: it is a copy of the machine's.
    void Adopt(const std::filesystem::path& folder);

    // What the machine has under this path never shows on the device. Say so before anything below
    // the same folder is made.
    void Claim(const std::filesystem::path& path) { claimed_.insert(path); }

    // Puts an empty folder in memory over one of the machine's, or makes the folder.
    void Cover(const std::filesystem::path& folder, mode_t mode);

    void MakeFolder(const std::filesystem::path& folder, mode_t mode);
    // Sees to it that files made in the folder are the device's own.
    void MakePrivate(const std::filesystem::path& folder);

    bool IsPrivate(const std::filesystem::path& path) const;

  private:
    void Mirror(const std::filesystem::path& folder);

    std::set<std::filesystem::path> claimed_;
    std::set<dev_t> devices_;  // of the folders in memory
};

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_TREE_H_
