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

// Lets programs that are started during its lifetime inherit the lock given to LendLock(), if any.
// In a host with threads, programs that other threads start at that time inherit it too. If the
// caller is killed, the tool that still copies a file keeps the lock, and nobody edits that file
// before the tool has ended.
class InheritedLock {
  public:
    InheritedLock();
    InheritedLock(const InheritedLock&) = delete;
    InheritedLock& operator=(const InheritedLock&) = delete;
    ~InheritedLock();

    // Lets EndLending() return true, for tools that may run on after their shell has ended. The
    // owner then closes its descriptor without unlocking, so the lock is free when the last tool
    // has ended.
    void LeaveToTools();

  private:
    const int fd_;
};

}  // namespace velk

#endif  // VELK_BASE_INHERITED_LOCK_H_
