// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unique_fd.h - the one owner of a file descriptor.
#ifndef VELK_BASE_UNIQUE_FD_H_
#define VELK_BASE_UNIQUE_FD_H_

#include <utility>

#include <unistd.h>

namespace velk {

// Closes its descriptor when its scope ends. A negative number means none; 0 is a descriptor.
class UniqueFd {
  public:
    explicit UniqueFd(int fd = -1) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { Reset(); }

    int get() const { return fd_; }
    int Release() { return std::exchange(fd_, -1); }

    // Closes its descriptor, then holds `fd`. Returns the result of close(2), or 0 if there was
    // none.
    int Reset(int fd = -1) {
        const int old = std::exchange(fd_, fd);
        return old >= 0 ? close(old) : 0;
    }

  private:
    int fd_;
};

}  // namespace velk

#endif  // VELK_BASE_UNIQUE_FD_H_
