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

// Without O_CREAT: the library makes the file, with a mode for every user.
LibraryLock::LibraryLock()
    : fd_(open(velk::kLockFile, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)),
      state_(TryToTake()) {
}

LibraryLock::State LibraryLock::TryToTake() {
    if (fd_.get() == -1) {
        return errno == ENOENT ? State::kNoFile : State::kBusy;
    }
    const bool is_locked = flock(fd_.get(), LOCK_EX | LOCK_NB) == 0;
    return is_locked && IsStillAtPath(fd_.get()) ? State::kHeld : State::kBusy;
}

bool AwaitLibraryLock(int seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (LibraryLock().is_busy()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        (void)nanosleep(&kPause, nullptr);
    }
    return true;
}

}  // namespace velkctl
