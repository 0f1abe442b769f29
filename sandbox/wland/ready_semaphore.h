// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ready_semaphore.h - the semaphore by which a program signals that it waits for a reply.
#ifndef SANDBOX_WLAND_READY_SEMAPHORE_H_
#define SANDBOX_WLAND_READY_SEMAPHORE_H_

#include <chrono>

#include <semaphore.h>

namespace wland {

// The program makes the semaphore before it sends its request, and removes it afterwards. This
// class only opens it: nothing would remove a semaphore made here.
class ReadySemaphore {
  public:
    ReadySemaphore();
    ~ReadySemaphore();
    ReadySemaphore(const ReadySemaphore&) = delete;
    ReadySemaphore& operator=(const ReadySemaphore&) = delete;

    bool exists() const { return handle_ != SEM_FAILED; }
    int error() const { return error_; }  // the errno if it does not exist

    // Waits up to `limit` for a post. Returns false if none came. The semaphore must exist.
    bool Take(std::chrono::milliseconds limit) const;

  private:
    sem_t* const handle_;
    const int error_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_READY_SEMAPHORE_H_
