// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// allocations.h - the allocations of the test program: counted, or failing by plan.
//
// The test executable defines operator new and delete itself, for the library as well.
#ifndef TESTS_SUPPORT_ALLOCATIONS_H_
#define TESTS_SUPPORT_ALLOCATIONS_H_

namespace testkit {

// Which calls a planned fault hits: one alone, or it and all later ones of its kind.
enum class Reach { kThatOne, kAllFrom };

// While it lives, allocations of the calling thread are the test kit's own: they neither count nor
// fail.
class UncountedAllocations {
  public:
    UncountedAllocations();
    ~UncountedAllocations();
    UncountedAllocations(const UncountedAllocations&) = delete;
    UncountedAllocations& operator=(const UncountedAllocations&) = delete;

  private:
    const bool outer_;
};

// While it lives, the calling thread's allocations are counted. One at a time in a thread.
class AllocationCount {
  public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    int made() const;
    // Those that were not freed again.
    int held() const;
};

// During its lifetime, the allocation with this number (from 1) of the calling thread fails; those
// of the recorder itself are not counted.
class AllocationFault {
  public:
    explicit AllocationFault(int number, Reach reach = Reach::kThatOne);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    // An allocation has failed by it.
    bool has_struck() const;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_ALLOCATIONS_H_
