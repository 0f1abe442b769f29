// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shared.h - a value that a test and its children share.
#ifndef TESTS_WORLD_SHARED_H_
#define TESTS_WORLD_SHARED_H_

#include <new>

#include <sys/mman.h>

namespace world {

// Zero at first. For atomic numbers and plain bytes.
template <typename Value>
class Shared {
  public:
    Shared()
        : value_(new (mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Value{}) {}
    ~Shared() { (void)munmap(value_, sizeof(Value)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    Value& operator*() const { return *value_; }
    Value* operator->() const { return value_; }

  private:
    Value* const value_;
};

}  // namespace world

#endif  // TESTS_WORLD_SHARED_H_
