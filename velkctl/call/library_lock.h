// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_lock.h - the lock between programs that change settings, taken without the library.
#ifndef VELKCTL_CALL_LIBRARY_LOCK_H_
#define VELKCTL_CALL_LIBRARY_LOCK_H_

#include "lib/base/unique_fd.h"

namespace velkctl {

// A set of another program ends within this time.
inline constexpr int kSetSeconds = 2;

// Tries once to take the lock, and releases it at the end of its life. It does not use the lock
// functions of the library: they write to the system log, which blocks while nothing reads it.
class LibraryLock {
  public:
    LibraryLock();
    // Tries again for so many seconds while another program has it. Does not wait for a lock file
    // that this user cannot open, as on a read-only disk.
    explicit LibraryLock(int wait_seconds);

    // True while no other program changes settings.
    bool is_held() const { return state_ == State::kHeld; }
    // True if another program may be changing settings. Without a lock file none is.
    bool is_busy() const { return state_ == State::kBusy; }
    // False if this user cannot open the lock file. The library cannot, either.
    bool can_be_awaited() const { return fd_.get() != -1; }

  private:
    enum class State { kHeld, kBusy, kNoFile };

    void TryToTake();

    velk::UniqueFd fd_;
    State state_ = State::kBusy;
};

// Waits until no other program changes settings. Returns false if one still does after so many
// seconds.
bool AwaitLibraryLock(int seconds);

}  // namespace velkctl

#endif  // VELKCTL_CALL_LIBRARY_LOCK_H_
