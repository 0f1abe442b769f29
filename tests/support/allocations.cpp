// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// allocations.cpp - operator new and delete, counted and failing by plan.
#include "support/allocations.h"

#include <cstdlib>
#include <new>
#include <utility>

#include <malloc.h>
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else  // GCC has no sanitizers for MIPS
#define ASAN_POISON_MEMORY_REGION(address, size) static_cast<void>(address)
#define ASAN_UNPOISON_MEMORY_REGION(address, size) static_cast<void>(address)
#endif

namespace testkit {
namespace {

thread_local int allocations_until_fault = 0;  // 0: none is planned
thread_local Reach allocation_fault_reach = Reach::kThatOne;
thread_local bool has_allocation_failed = false;
thread_local bool is_uncounted = false;
thread_local bool is_counting = false;
thread_local int allocations_made = 0;
thread_local int allocations_held = 0;

// The mark after every block. It shows if the block was counted when it was allocated. It is not
// in front of the block, because a leak checker looks for pointers to the block's first byte.
bool* MarkAfter(void* block) {
    return static_cast<bool*>(block) + malloc_usable_size(block) - sizeof(bool);
}

// The mark is out of bounds for all other code: the sanitizer must report an access one byte after
// a block.
void PutMark(void* block, bool is_counted) {
    bool* const mark = MarkAfter(block);
    *mark = is_counted;
    ASAN_POISON_MEMORY_REGION(mark, sizeof(*mark));
}

bool TakeMark(void* block) {
    bool* const mark = MarkAfter(block);
    ASAN_UNPOISON_MEMORY_REGION(mark, sizeof(*mark));
    return *mark;
}

bool IsFaultDue() {
    if (is_uncounted || allocations_until_fault == 0) {
        return false;
    }
    if (--allocations_until_fault > 0) {
        return false;
    }
    allocations_until_fault = allocation_fault_reach == Reach::kAllFrom ? 1 : 0;
    has_allocation_failed = true;
    return true;
}

void* Allocate(size_t size) {
    const bool is_counted = is_counting && !is_uncounted;
    if (is_counted) {
        ++allocations_made;
    }
    if (IsFaultDue()) {
        throw std::bad_alloc();
    }
    void* block = malloc(size + sizeof(bool));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    PutMark(block, is_counted);
    allocations_held += is_counted ? 1 : 0;
    return block;
}

void Free(void* memory) {
    if (memory == nullptr) {
        return;
    }
    allocations_held -= TakeMark(memory) ? 1 : 0;
    free(memory);
}

}  // namespace

UncountedAllocations::UncountedAllocations() : outer_(std::exchange(is_uncounted, true)) {
}

UncountedAllocations::~UncountedAllocations() {
    is_uncounted = outer_;
}

AllocationCount::AllocationCount() {
    is_counting = true;
    allocations_made = 0;
    allocations_held = 0;
}

AllocationCount::~AllocationCount() {
    is_counting = false;
}

int AllocationCount::made() const {
    return allocations_made;
}

int AllocationCount::held() const {
    return allocations_held;
}

AllocationFault::AllocationFault(int number, Reach reach) {
    allocations_until_fault = number;
    allocation_fault_reach = reach;
    has_allocation_failed = false;
}

AllocationFault::~AllocationFault() {
    allocations_until_fault = 0;
}

bool AllocationFault::has_struck() const {
    return has_allocation_failed;
}

}  // namespace testkit

void* operator new(size_t size) {
    return testkit::Allocate(size);
}

void* operator new[](size_t size) {
    return testkit::Allocate(size);
}

// A sanitizer has its own definitions of these, which do not know the blocks of the others.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    try {
        return testkit::Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    testkit::Free(memory);
}

void operator delete(void* memory) noexcept {
    testkit::Free(memory);
}

void operator delete[](void* memory) noexcept {
    testkit::Free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    testkit::Free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    testkit::Free(memory);
}
