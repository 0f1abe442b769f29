// ready_semaphore.h - how a program tells that it can take a reply.
#ifndef SANDBOX_WLAND_READY_SEMAPHORE_H_
#define SANDBOX_WLAND_READY_SEMAPHORE_H_

#include <chrono>

#include <semaphore.h>

namespace wland {

// The program makes the semaphore before it sends its request, and removes it. This only opens it:
// a name made here would be left behind.
class ReadySemaphore {
  public:
    ReadySemaphore();
    ~ReadySemaphore();
    ReadySemaphore(const ReadySemaphore&) = delete;
    ReadySemaphore& operator=(const ReadySemaphore&) = delete;

    bool exists() const { return handle_ != SEM_FAILED; }
    int error() const { return error_; }  // the errno that says why it does not exist

    // Takes one post, waiting for it up to `limit`. False when none came. The semaphore must exist.
    bool Take(std::chrono::milliseconds limit) const;

  private:
    sem_t* const handle_;
    const int error_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_READY_SEMAPHORE_H_
