// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expectation.h - the expected answer and permitted remains of a request with a failing call.
#ifndef TESTS_FAULT_KIT_EXPECTATION_H_
#define TESTS_FAULT_KIT_EXPECTATION_H_

#include <set>
#include <string>

#include "fault/kit/trial.h"

namespace fault {

// The effect of a fault on the answer.
enum class Notice {
    kNone,       // not at all
    kFailure,    // -1
    kNoAddress,  // 0 and an empty text: no hardware address
    kNoResult,   // as if the clock were never set
    kNoAdapter,  // as with the adapter out
    kNoCable,    // as with the cable out
    kOldResult,  // 0 and an empty text: the earlier output of another tool holds no address
    kCut,        // as if the file ended at the failed read
};

struct Expectation {
    Notice notice = Notice::kNone;
    // The call that fails visibly; null for kNone and for allocations.
    const LoggedCall* call = nullptr;
};

// The first failing call with a visible failure decides. Without a cable, a failed link detection
// decides only if no other call fails. If all later calls fail too, some of them may be calls that
// the request without a fault never makes.
Expectation ExpectationOf(const Fault& fault, const Scene& scene, const _velk_request& request,
                          const Reference& reference);

// Few commands report a shell line that does not run. These files may then be unchanged.
std::set<std::string> FilesOfFailedLines(const Fault& fault, const Reference& reference);

// True if the file may remain although the call without a fault leaves none.
bool MayBeLeft(const std::string& path, const Fault& fault, const Reference& reference);

// /var/tmp/NAME of a file that is edited.
bool IsEditCopy(const std::string& path);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_EXPECTATION_H_
