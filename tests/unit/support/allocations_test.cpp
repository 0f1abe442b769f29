// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Tests of the test kit's allocations: counting, failing, and the end of a block.
#include "support/allocations.h"

#include <cstddef>
#include <new>

#include <gtest/gtest.h>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

#include "support/call_probe.h"

namespace {

TEST(AllocationCountTest, CountsAllocationsMadeAndHeld) {
    const testkit::AllocationCount count;
    char* first = plain_allocate();
    char* second = plain_allocate();
    {
        const testkit::UncountedAllocations ours;
        delete[] plain_allocate();
    }
    EXPECT_EQ(count.made(), 2);
    EXPECT_EQ(count.held(), 2);
    delete[] first;
    EXPECT_EQ(count.held(), 1);
    delete[] second;
    EXPECT_EQ(count.held(), 0);
    EXPECT_EQ(count.made(), 2);
}

TEST(AllocationFaultTest, MayHitAllLaterAllocations) {
    const testkit::AllocationFault fault(2, testkit::Reach::kAllFrom);
    delete[] plain_allocate();
    EXPECT_THROW(plain_allocate(), std::bad_alloc);
    EXPECT_THROW(plain_allocate(), std::bad_alloc);
}

#if defined(__SANITIZE_ADDRESS__)
TEST(AllocationBoundsTest, AreThoseOfTheRequestedSize) {
    for (size_t size = 1; size <= 16; ++size) {
        char* const block = new char[size];
        EXPECT_FALSE(__asan_address_is_poisoned(block + size - 1)) << size;
        EXPECT_TRUE(__asan_address_is_poisoned(block + size)) << size;
        delete[] block;
    }
}
#endif

}  // namespace
