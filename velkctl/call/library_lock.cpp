// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_lock.cpp - the lock between programs that change settings, taken without the library.
#include "velkctl/call/library_lock.h"

#include <cerrno>
#include <chrono>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "lib/base/paths.h"

namespace velkctl {
namespace {

constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 20'000'000};

// After a removal and a new creation of the file, two files can be locked. Only the lock of the
// file at the path keeps other programs away.
bool IsStillAtPath(int fd) {
    struct stat opened {};
    struct stat named {};
    return fstat(fd, &opened) == 0 && lstat(velk::kLockFile, &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

LibraryLock::LibraryLock() {
    TryToTake();
}

LibraryLock::LibraryLock(int wait_seconds) : LibraryLock() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(wait_seconds);
    while (is_busy() && can_be_awaited() && std::chrono::steady_clock::now() < end) {
        (void)nanosleep(&kPause, nullptr);
        TryToTake();
    }
}

// Without O_CREAT: the library makes the file, with a mode for every user.
void LibraryLock::TryToTake() {
    fd_.Reset(open(velk::kLockFile, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (fd_.get() == -1) {
        state_ = errno == ENOENT ? State::kNoFile : State::kBusy;
        return;
    }
    const bool is_locked = flock(fd_.get(), LOCK_EX | LOCK_NB) == 0;
    state_ = is_locked && IsStillAtPath(fd_.get()) ? State::kHeld : State::kBusy;
}

bool AwaitLibraryLock(int seconds) {
    return !LibraryLock(seconds).is_busy();
}

}  // namespace velkctl
