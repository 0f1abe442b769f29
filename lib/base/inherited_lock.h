// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// inherited_lock.h - lends the inter-process lock to the tools that replace a file.
#ifndef VELK_BASE_INHERITED_LOCK_H_
#define VELK_BASE_INHERITED_LOCK_H_

namespace velk {

// Sets the descriptor of the lock that this process holds. InheritedLock lends it from now on.
void LendLock(int fd);

// Ends the lending. Returns true if an InheritedLock has left the lock to tools that may still run.
bool EndLending();

// While it lives, programs that are started inherit the lock given to LendLock(), if there is one.
// In a host with threads, these are also the programs that other threads start at the same time. If
// the caller is killed, the tool that still copies a file keeps the lock, and nobody edits that
// file before the tool has ended.
class InheritedLock {
  public:
    InheritedLock();
    InheritedLock(const InheritedLock&) = delete;
    InheritedLock& operator=(const InheritedLock&) = delete;
    ~InheritedLock();

    // A tool may run on after the shell that started it has ended. EndLending() then returns true,
    // so that the owner closes its descriptor without unlocking: the lock is free when that tool
    // has ended, too.
    void LeaveToTools();

  private:
    const int fd_;
};

}  // namespace velk

#endif  // VELK_BASE_INHERITED_LOCK_H_
