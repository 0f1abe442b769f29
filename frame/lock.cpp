// lock.cpp - the inter-process lock around set and restart commands.
#include "frame/lock.h"

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "frame/log.h"
#include "frame/unique_fd.h"
#include "velk.h"

namespace velk {
namespace {

constexpr char kLockFile[] = "/var/tmp/vklib_lock";
constexpr mode_t kLockMode = 0666;  // processes of every user take the lock

// Creates the lock file, its mode untouched by the umask. Not positive on failure.
UniqueFd CreateLockFile() {
    UniqueFd fd(open(kLockFile, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kLockMode));
    if (fd.get() <= 0) {
        LogErrno("VkLibLock open2 errno=%d:%s", errno);
        return fd;
    }
    if (fchmod(fd.get(), kLockMode) == -1) {
        LogErrno("VkLibLock fchmod errno=%d:%s", errno);
    }
    return fd;
}

// Never through a link: anybody may plant one in this folder, to anywhere.
//
// Opens without O_CREAT first: with fs.protected_regular the kernel refuses O_CREAT on a file that
// another user made in a sticky directory. Descriptor 0 counts as a failure; it is held until the
// second open is done, so that the second one gets another number.
UniqueFd OpenLockFile() {
    UniqueFd existing(open(kLockFile, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (existing.get() > 0) {
        Log("VkLibLock indelible");
        return existing;
    }
    return CreateLockFile();
}

// Of the process: the lock has one holder at a time.
std::atomic<int> command_lock = -1;

}  // namespace

CommandLock::CommandLock(int lock) : fd_(lock) {
    if (held()) {
        command_lock = fd_;
    }
}

CommandLock::~CommandLock() {
    if (held()) {
        command_lock = -1;
        VkLibUnLock(fd_);
    }
}

InheritedLock::InheritedLock() : fd_(command_lock) {
    if (fd_ != -1) {
        (void)fcntl(fd_, F_SETFD, 0);
    }
}

InheritedLock::~InheritedLock() {
    if (fd_ != -1) {
        (void)fcntl(fd_, F_SETFD, FD_CLOEXEC);
    }
}

}  // namespace velk

int VkLibLock() {
    velk::UniqueFd fd = velk::OpenLockFile();
    if (fd.get() <= 0) {
        return LIB_VELK_FAILURE;
    }
    if (flock(fd.get(), LOCK_EX | LOCK_NB) == 0) {
        return fd.Release();
    }
    if (errno == EAGAIN) {
        return LIB_VELK_LOCKED;
    }
    velk::LogErrno("VkLibLock flock errno=%d:%s", errno);
    return LIB_VELK_FAILURE;
}

void VkLibUnLock(int fd) {
    if (fd == -1) {
        return;
    }
    const velk::UniqueFd owned(fd);
    if (flock(fd, LOCK_UN) == -1) {
        velk::LogErrno("flock errno=%d:%s", errno);
    }
}
