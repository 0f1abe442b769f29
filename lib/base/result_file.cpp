// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// result_file.cpp - the file that every command line with output is redirected into.
#include "lib/base/result_file.h"

#include <cerrno>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/users.h"

namespace velk {
namespace {

constexpr mode_t kResultMode = 0600;  // with any umask
constexpr int kTries = 16;            // another user may plant files all the time

// The time of a new file. The shell changes it when it opens the file, so it only remains if no
// shell was started.
constexpr timespec kUnwritten[2] = {};

// Creates a new file. Returns false with errno on failure.
bool CreateResultFile() {
    const UniqueFd fd(
        open(kResultFile, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kResultMode));
    if (fd.get() == -1) {
        return false;
    }
    (void)fchmod(fd.get(), kResultMode);
    (void)futimens(fd.get(), kUnwritten);
    return true;
}

// A folder that is not empty is renamed, because emptying it may never end.
bool RemoveFolder() {
    if (rmdir(kResultFile) == 0) {
        return true;
    }
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    char elsewhere[sizeof(kResultFile) + 48];
    (void)snprintf(elsewhere, sizeof(elsewhere), "%s.%lld.%ld", kResultFile,
                   static_cast<long long>(now.tv_sec), now.tv_nsec);
    return rename(kResultFile, elsewhere) == 0;
}

bool RemoveForeign(const struct stat& facts) {
    return S_ISDIR(facts.st_mode) ? RemoveFolder() : unlink(kResultFile) == 0;
}

bool IsUnwritten(const struct stat& facts) {
    return facts.st_size == 0 && facts.st_mtim.tv_sec == 0;
}

UniqueFd Refused(int error) {
    errno = error;
    return UniqueFd();
}

}  // namespace

bool IsOwnResultFile(const struct stat& facts) {
    const bool is_callers = facts.st_uid == geteuid() || facts.st_uid == getuid();
    return S_ISREG(facts.st_mode) && facts.st_nlink == 1 && is_callers;
}

bool PrepareResultFile() {
    for (int i = 0; i < kTries; ++i) {
        // The shell of a caller with two users runs as the real user, who could not write into a
        // new file of the effective user.
        const bool is_made = !HasTwoUsers() && CreateResultFile();
        if (is_made) {
            return true;
        }
        struct stat facts {};
        if (fstatat(AT_FDCWD, kResultFile, &facts, AT_SYMLINK_NOFOLLOW) == -1) {
            return true;  // no file is there; the shell reports why it cannot be created
        }
        if (IsOwnResultFile(facts)) {
            return true;
        }
        if (!RemoveForeign(facts) && errno != ENOENT) {
            return false;
        }
    }
    return false;
}

UniqueFd OpenResultFile() {
    UniqueFd fd(open(kResultFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() == -1) {
        return fd;
    }
    struct stat facts {};
    (void)fstat(fd.get(), &facts);  // cannot fail on an open file
    if (!IsOwnResultFile(facts)) {
        return Refused(EPERM);
    }
    if (IsUnwritten(facts)) {
        (void)unlink(kResultFile);
        return Refused(ENOENT);
    }
    return fd;
}

}  // namespace velk
