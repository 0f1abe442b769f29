// mounts.cpp - the kernel's mount calls, failing with plain words.
#include "sandbox/device/mounts.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr char kSource[] = "velk";  // what the device's mounts are called in /proc/mounts
constexpr mode_t kModeBits = 07777;
constexpr unsigned kFilesPerMegabyte = 256;  // empty files take memory, too

// Valgrind knows neither open_tree(2) nor move_mount(2). A place stays reachable when something is
// mounted over it, but unlike a clone it shares later changes of its mount's flags: enough for a
// device that leaves the machine writable.
velk::UniqueFd HoldByPlace(int folder, const std::string& name) {
    return velk::UniqueFd(openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
}

bool BindPlace(const velk::UniqueFd& held, const std::string& path) {
    const std::string place = "/proc/self/fd/" + std::to_string(held.get());
    return mount(place.c_str(), path.c_str(), "none", MS_BIND | MS_REC, nullptr) == 0;
}

}  // namespace

dev_t MountMemory(const std::string& folder, mode_t mode, unsigned megabytes) {
    char options[64];
    (void)snprintf(options, sizeof(options), "mode=%04o,size=%um,nr_inodes=%u", mode & kModeBits,
                   megabytes, megabytes * kFilesPerMegabyte);
    if (mount(kSource, folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options) == -1) {
        Fail("cannot make " + folder + " private", errno);
    }
    struct stat status;
    if (stat(folder.c_str(), &status) == -1) {
        Fail("cannot look at " + folder, errno);
    }
    return status.st_dev;
}

bool MountKernel(const char* type, const char* folder, unsigned long flags) {
    return mount(kSource, folder, type, MS_NOSUID | MS_NODEV | MS_NOEXEC | flags, nullptr) == 0;
}

velk::UniqueFd Hold(int folder, const std::string& name) {
    const unsigned flags = OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_RECURSIVE | AT_SYMLINK_NOFOLLOW;
    velk::UniqueFd held(open_tree(folder, name.c_str(), flags));
    return held.get() == -1 && errno == ENOSYS ? HoldByPlace(folder, name) : std::move(held);
}

bool TryAttach(const velk::UniqueFd& held, const std::string& path) {
    if (move_mount(held.get(), "", AT_FDCWD, path.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0) {
        return true;
    }
    return errno == ENOSYS && BindPlace(held, path);
}

void Attach(const velk::UniqueFd& held, const std::string& path) {
    if (!TryAttach(held, path)) {
        Fail("cannot show " + path, errno);
    }
}

void MakeReadOnly(const std::string& path) {
    mount_attr attributes{};
    attributes.attr_set = MOUNT_ATTR_RDONLY;
    if (mount_setattr(AT_FDCWD, path.c_str(), AT_RECURSIVE, &attributes, sizeof(attributes)) ==
        -1) {
        Fail("cannot make " + path + " read-only", errno);
    }
}

}  // namespace sandbox
