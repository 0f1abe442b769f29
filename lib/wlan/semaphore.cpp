// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// semaphore.cpp - the semaphore of one query, which no other user can post.
#include "lib/wlan/semaphore.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <semaphore.h>
#include <unistd.h>

#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "velk/wlan.h"

namespace velk {
namespace {

constexpr mode_t kMode = 0666;
constexpr mode_t kPrivateMode = 0600;
constexpr int kTries = 100;  // another user may create the file again after each removal

// A query goes on without a semaphore; the missing handle fails here instead of crashing.
int Close(const sem_t* sem) {
    if (sem == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return sem_close(const_cast<sem_t*>(sem));
}

// A host with an open umask makes semaphores that everybody can post; those are not used.
bool IsOwn(const struct stat& facts) {
    return facts.st_uid == geteuid() && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

ReadySemaphore::ReadySemaphore() : handle_(CreatSemaphore()) {
    errno = EEXIST;
    for (int tries = 0; tries < kTries && !is_private_; ++tries) {
        is_private_ = TakeName();
    }
    if (!is_private_) {
        LogErrno("QueryWlanDaemon sem_open errno=%d:%s", errno);
        (void)Close(handle_);
    }
}

ReadySemaphore::~ReadySemaphore() {
    if (is_reserved_) {
        (void)remove(kSemaphoreFile);
    }
    if (is_private_) {
        DeleteSemaphore(handle_);
    }
}

// Returns false with errno if another user has the name at this moment. Without a file of that name
// the facts stay zero, like those of an empty file.
bool ReadySemaphore::TakeName() {
    struct stat facts {};
    const int found = lstat(kSemaphoreFile, &facts);
    if (handle_ == nullptr && found == -1) {
        return Reserve();
    }
    if (IsOwn(facts) && (handle_ == nullptr || IsUnposted(facts))) {
        return true;
    }
    (void)remove(kSemaphoreFile);
    return Renew();
}

// A query that was killed may leave a posted semaphore. The size is checked first because C
// libraries map any file, and reading beyond its end would crash the program.
bool ReadySemaphore::IsUnposted(const struct stat& facts) const {
    int value = 0;
    return facts.st_size >= static_cast<off_t>(sizeof(sem_t)) &&
           sem_getvalue(handle_, &value) == 0 && value == 0;
}

bool ReadySemaphore::Renew() {
    (void)Close(handle_);
    sem_t* sem = sem_open(kSemaphoreName, O_RDWR | O_CREAT | O_EXCL, kPrivateMode, 0U);
    handle_ = sem == SEM_FAILED ? nullptr : sem;
    return handle_ != nullptr;
}

// The query goes on without a semaphore of its own, but nobody else may create one meanwhile. A
// link keeps the name, because semaphores are not opened through links. If no link can be made in a
// folder that can be written, it is full or another user was faster: nothing may be sent.
bool ReadySemaphore::Reserve() {
    is_reserved_ = symlink("none", kSemaphoreFile) == 0;
    return is_reserved_ || access(kSemaphoreFolder, W_OK) == -1;
}

}  // namespace velk

using namespace velk;

sem_t* CreatSemaphore() {
    sem_t* sem = sem_open(kSemaphoreName, O_RDWR | O_CREAT, kMode, 0U);
    if (sem == SEM_FAILED) {
        LogErrno("CreatSemaphore sem_open:errno=%d:%s", errno);
        return nullptr;
    }
    return sem;
}

void DeleteSemaphore(const sem_t* sem) {
    if (Close(sem) == -1) {
        LogErrno("DeleteSemaphore sem_close errno=%d:%s", errno);
    }
    if (sem_unlink(kSemaphoreName) == -1) {
        LogErrno("DeleteSemaphore sem_unlink errno=%d:%s", errno);
    }
}
