// lock.h - holds the inter-process lock for the length of a scope.
#include "velk/request.h"
#ifndef VELK_ENTRY_LOCK_H_
#define VELK_ENTRY_LOCK_H_

namespace velk {

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
