// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// allocations.h - the allocations of the test program: counted, or failing by plan.
//
// The test executable defines operator new and delete itself, for the library as well.
#ifndef TESTS_SUPPORT_ALLOCATIONS_H_
#define TESTS_SUPPORT_ALLOCATIONS_H_

namespace testkit {

// The calls that a planned fault hits: one alone, or it and all later ones of its kind.
enum class Reach { kThatOne, kAllFrom };

// During its lifetime, allocations of the calling thread belong to the test kit: they neither count
// nor fail.
class UncountedAllocations {
  public:
    UncountedAllocations();
    ~UncountedAllocations();
    UncountedAllocations(const UncountedAllocations&) = delete;
    UncountedAllocations& operator=(const UncountedAllocations&) = delete;

  private:
    const bool outer_;
};

// During its lifetime, the allocations of the calling thread are counted. A thread has one at a
// time.
class AllocationCount {
  public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    int made() const;
    // Returns the number of counted allocations that were not freed.
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

    // Returns true if an allocation has failed by it.
    bool has_struck() const;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_ALLOCATIONS_H_
