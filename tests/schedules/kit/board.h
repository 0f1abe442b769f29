// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// board.h - memory in which callers leave their answers for the test.
#ifndef TESTS_SCHEDULES_KIT_BOARD_H_
#define TESTS_SCHEDULES_KIT_BOARD_H_

#include <array>
#include <string>
#include <type_traits>
#include <utility>

#include <sys/mman.h>

#include "velk.h"

namespace schedules {

// An object in memory that the test shares with the processes that it forks.
template <typename Value>
class Shared {
    static_assert(std::is_trivially_destructible_v<Value>);

  public:
    Shared()
        : value_(new (mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Value{}) {}
    ~Shared() { munmap(value_, sizeof(Value)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    Value* operator->() const { return value_; }
    Value& operator*() const { return *value_; }

  private:
    Value* const value_;
};

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_BOARD_H_
