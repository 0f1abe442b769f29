// lock.h - holds the inter-process lock for the length of a scope.
#ifndef VELK_BASE_LOCK_H_
#define VELK_BASE_LOCK_H_

#include "velk.h"

namespace velk {

class CommandLock {
  public:
    // Owns what VkLibLock() returned.
    explicit CommandLock(int lock);
    CommandLock(const CommandLock&) = delete;
    CommandLock& operator=(const CommandLock&) = delete;
    ~CommandLock();

    bool held() const { return fd_ > 0; }
    // The result for the caller when it is not held; 0 is no error code and must not pass for
    // success.
    int refusal() const { return fd_ == 0 ? LIB_VELK_INVALID_PARAMETER : fd_; }

  private:
    const int fd_;
};

// While it lives, programs that are started inherit the lock that a CommandLock of this process
// holds. In a host with threads, these are also the programs that other threads start meanwhile. A
// caller that is killed then leaves the lock to the tool that still copies a file, and nobody edits
// that file before the tool has ended.
class InheritedLock {
  public:
    InheritedLock();
    InheritedLock(const InheritedLock&) = delete;
    InheritedLock& operator=(const InheritedLock&) = delete;
    ~InheritedLock();

    // A tool may run on after the shell that started it has ended. From now on the end of the
    // CommandLock gives up its own hold alone: the lock is free when that tool has ended, too.
    void LeaveToTools();

  private:
    const int fd_;
};

}  // namespace velk

#endif  // VELK_BASE_LOCK_H_
