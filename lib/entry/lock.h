// lock.h - holds the inter-process lock for the length of a scope.
#include "velk/request.h"
#ifndef VELK_ENTRY_LOCK_H_
#define VELK_ENTRY_LOCK_H_

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

}  // namespace velk

#endif  // VELK_ENTRY_LOCK_H_
