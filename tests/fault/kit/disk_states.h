// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk_states.h - the states that a disk may show after a power cut.
//
// The model is weaker than any file system that a device is likely to have:
// * Bytes, size, mode and owner of a file are on disk after a later fsync(2) of that file, names
//   after one of their folder. Until then any subset of these changes may be on disk, in one file,
//   one folder and between them. A rename is atomic.
// * An unwritten block reads as NULs, not as bytes of another file.
// * Of one of the writes on disk only a part may be there: a beginning alone or with NULs up to its
//   end, NULs alone, or all but one block of 4 KB. So no block has to be atomic.
// * A file that was shortened and written, with only the write on disk, has NULs up to its old
//   size: the kernel clears the rest of a block before it writes it.
// * The files in memory, or in a folder that a reboot empties, are all lost or all kept; or kept
//   and empty, because nothing writes them to disk.
#ifndef TESTS_FAULT_KIT_DISK_STATES_H_
#define TESTS_FAULT_KIT_DISK_STATES_H_

#include <cstddef>
#include <functional>

#include "fault/kit/disk.h"
#include "fault/kit/disk_log.h"

namespace fault {

struct CutState {
    Tree disk;
    Tree in_memory;
    bool is_at_end = false;  // the work has returned
};

// Up to so many pending changes every subset of them is built. Of more pending changes as many
// subsets are built, with a fixed seed: none, all, each alone, all but each, and others.
inline constexpr size_t kMostPendingForAll = 7;

struct CutCounts {
    int moments = 0;          // before the first change and after each
    size_t most_pending = 0;  // changes that are not on disk
    int sampled_moments = 0;  // those with more than kMostPendingForAll
};

// Calls the function once for each state that differs from all earlier ones, until it returns
// false. Builds one of so many of the states, with a fixed seed; 1 builds all. In each sample are
// the states with only the changes that are certain to be on disk.
CutCounts ForEachCutState(const DiskLog& log, unsigned one_of,
                          const std::function<bool(const CutState&)>& handle);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_DISK_STATES_H_
