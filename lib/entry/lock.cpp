// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock.cpp - the inter-process lock around set and restart commands.
#include "lib/entry/lock.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/inherited_lock.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "velk/frame.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr mode_t kLockMode = 0666;  // processes of every user take the lock
constexpr int kTries = 100;
constexpr int kReplaced = 0;  // another user replaced the file while it was being locked

// Takes the lock in one or more tries.
class LockAttempt {
  public:
    // Returns a positive descriptor that holds the lock, a result code, or kReplaced.
    int Try();
    int Fail() const;

  private:
    UniqueFd Open();
    bool Keep(int fd);
    int Refuse(int error);

    bool has_logged_ = false;  // whether "indelible" is logged already
    int error_ = 0;
};

bool HasOneName(int fd) {
    struct stat facts {};
    return fstat(fd, &facts) == 0 && facts.st_nlink == 1;
}

// Creates the lock file with a mode that the umask does not change. The descriptor is not positive
// on failure. A file that exists is opened only without O_EXCL. The mode of a file with other names
// is not changed: another user may have planted a link to any file.
UniqueFd CreateLockFile(int exclusive) {
    UniqueFd fd(open(kLockFile, O_RDWR | O_CREAT | exclusive | O_NOFOLLOW | O_CLOEXEC, kLockMode));
    if (fd.get() <= 0 || (exclusive == 0 && !HasOneName(fd.get()))) {
        return fd;
    }
    if (fchmod(fd.get(), kLockMode) == -1) {
        LogErrno("VkLibLock fchmod errno=%d:%s", errno);
    }
    return fd;
}

// Opens the lock file, but follows no link: any user may plant one in this folder.
//
// The first try is without O_CREAT: with fs.protected_regular the kernel refuses O_CREAT on a file
// that another user made in a sticky directory. Descriptor 0 counts as a failure; it is held until
// the second open is done, so that the second one gets another number.
UniqueFd LockAttempt::Open() {
    UniqueFd existing(open(kLockFile, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    error_ = errno;
    if (existing.get() > 0) {
        if (!std::exchange(has_logged_, true)) {
            Log("VkLibLock indelible");
        }
        return existing;
    }
    return CreateLockFile(existing.get() == 0 ? 0 : O_EXCL);
}

// Ensures that the file stays the lock file as long as it is locked. In a sticky folder its owner
// can replace it, and the next caller would lock the new one. So root takes over another user's
// file. A file with other names may be any user's file and is not taken over.
bool LockAttempt::Keep(int fd) {
    struct stat locked {};
    if (fstat(fd, &locked) == -1) {
        return false;
    }
    if (locked.st_uid != 0 && geteuid() == 0) {
        if (locked.st_nlink != 1) {
            error_ = EMLINK;
            return false;
        }
        (void)!fchown(fd, 0, 0);  // if this fails, the file is used as it is
        (void)fchmod(fd, kLockMode);
    }
    error_ = ESTALE;
    struct stat named {};
    return lstat(kLockFile, &named) == 0 && named.st_dev == locked.st_dev &&
           named.st_ino == locked.st_ino;
}

int LockAttempt::Try() {
    UniqueFd fd = Open();
    if (fd.get() <= 0) {
        return Refuse(errno);
    }
    if (flock(fd.get(), LOCK_EX | LOCK_NB) == 0) {
        return Keep(fd.get()) ? fd.Release() : kReplaced;
    }
    if (errno == EAGAIN) {
        return LIB_VELK_LOCKED;
    }
    LogErrno("VkLibLock flock errno=%d:%s", errno);
    return LIB_VELK_FAILURE;
}

// If another user created the file after the first open, the next try opens it. The logged errno of
// a file that cannot be opened is that of the first open.
int LockAttempt::Refuse(int error) {
    if (error != EEXIST || error_ == ENOENT) {
        error_ = error;
    }
    return error == EEXIST ? kReplaced : Fail();
}

int LockAttempt::Fail() const {
    LogErrno("VkLibLock open2 errno=%d:%s", error_);
    return LIB_VELK_FAILURE;
}

}  // namespace

CommandLock::CommandLock(int lock) : fd_(lock) {
    if (held()) {
        LendLock(fd_);
    }
}

CommandLock::~CommandLock() {
    if (!held()) {
        return;
    }
    if (EndLending()) {
        (void)close(fd_);
    } else {
        VkLibUnLock(fd_);
    }
}

}  // namespace velk

using namespace velk;

int VkLibLock() {
    LockAttempt attempt;
    for (int tries = 0; tries < kTries; ++tries) {
        if (const int result = attempt.Try(); result != kReplaced) {
            return result;
        }
    }
    return attempt.Fail();
}

void VkLibUnLock(int fd) {
    if (fd == -1) {
        return;
    }
    const UniqueFd owned(fd);
    if (flock(fd, LOCK_UN) == -1) {
        LogErrno("flock errno=%d:%s", errno);
    }
}
