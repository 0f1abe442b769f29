// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// semaphore.h - the semaphore of one query, which no other user can post.
#ifndef VELK_WLAN_SEMAPHORE_H_
#define VELK_WLAN_SEMAPHORE_H_

#include <semaphore.h>
#include <sys/stat.h>

namespace velk {

// Signals the daemon that the reply socket exists. The daemon sends its reply, with the keys in it,
// once the semaphore is posted, to any socket at the reply path. So no other user may post it, or
// make one of that name.
//
// The destructor removes the name on every path.
class ReadySemaphore {
  public:
    ReadySemaphore();
    ~ReadySemaphore();
    ReadySemaphore(const ReadySemaphore&) = delete;
    ReadySemaphore& operator=(const ReadySemaphore&) = delete;

    // Returns false, after a log line, if another user keeps the name. Nothing may be sent then.
    bool is_private() const { return is_private_; }
    // Returns null if the semaphore could not be opened.
    const sem_t* handle() const { return handle_; }

  private:
    bool TakeName();
    bool IsUnposted(const struct stat& facts) const;
    bool Renew();
    bool Reserve();

    sem_t* handle_;
    bool is_reserved_ = false;
    bool is_private_ = false;
};

}  // namespace velk

#endif  // VELK_WLAN_SEMAPHORE_H_
