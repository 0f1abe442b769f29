// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// private_copy.h - replaces the device's files by copies, for one process and its children.
#ifndef VELKCTL_PREVIEW_PRIVATE_COPY_H_
#define VELKCTL_PREVIEW_PRIVATE_COPY_H_

#include <string>

#include "velkctl/preview/copy_plan.h"

namespace velkctl {

// A step that the kernel refused; `error` is 0 if none was.
struct CopyFailure {
    std::string step{};
    int error = 0;
};

// Mounts copies of the planned files over them, in a mount namespace of this process, with an own
// folder of edit copies, result file and lock. All else becomes read-only. `talks` leaves the
// folders of the wireless daemon's sockets and semaphore writable, as a query needs it.
CopyFailure EnterPrivateCopy(const CopyPlan& plan, bool talks);

// Returns ESTALE if another program has removed or replaced a file below its copy: the kernel then
// takes the copy away, and the process sees the other file. That one is read-only.
CopyFailure CheckPrivateCopy(const CopyPlan& plan);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_PRIVATE_COPY_H_
