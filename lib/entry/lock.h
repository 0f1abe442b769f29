// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock.h - the inter-process lock around set and restart commands.
#ifndef VELK_ENTRY_LOCK_H_
#define VELK_ENTRY_LOCK_H_

#include "velk/request.h"

namespace velk {

// Holds the lock until the end of a scope.
class CommandLock {
  public:
    // Owns the result of VkLibLock().
    explicit CommandLock(int lock);
    CommandLock(const CommandLock&) = delete;
    CommandLock& operator=(const CommandLock&) = delete;
    ~CommandLock();

    bool held() const { return fd_ > 0; }
    // Returns the error code if the lock is not held. 0 is no error code and must not be returned
    // as success.
    int refusal() const { return fd_ == 0 ? LIB_VELK_INVALID_PARAMETER : fd_; }

  private:
    const int fd_;
};

}  // namespace velk

#endif  // VELK_ENTRY_LOCK_H_
