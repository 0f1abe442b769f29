// expectation.h - what a request must answer, and what it may leave, when one of its calls fails.
#ifndef TESTS_FAULT_KIT_EXPECTATION_H_
#define TESTS_FAULT_KIT_EXPECTATION_H_

#include <set>
#include <string>

#include "fault/kit/trial.h"

namespace fault {

// How a fault shows in the answer.
enum class Notice {
    kNone,       // not at all
    kTold,       // -1
    kNoAddress,  // 0 and an empty text: no hardware address
    kNoResult,   // as if the clock had never been set
    kNoAdapter,  // as with the adapter out
    kNoCable,    // as with the cable out
    kOldResult,  // 0 and an empty text: what another tool printed before holds no address
    kCut,        // as if the file ended where it could not be read any further
};

struct Expectation {
    Notice notice = Notice::kNone;
    // Whose failure shows. Nothing for kNone and for allocations.
    const LoggedCall* call = nullptr;
};

// Of the calls that fail, in their order, the first whose failure shows decides; with the cable out
// anyway, a link that cannot be told only when there is no other. With all later ones failing too,
// what it changes may be followed by failures that the call without a fault never comes to.
Expectation ExpectationOf(const Fault& fault, const Scene& scene, const _velk_request& request,
                          const Reference& reference);

// A shell line that does not run is told by few commands. These files may be as before then.
std::set<std::string> FilesOfFailedLines(const Fault& fault, const Reference& reference);

// Whether the file may be left behind where the call without a fault leaves none.
bool MayBeLeft(const std::string& path, const Fault& fault, const Reference& reference);

// /var/tmp/NAME of a file that is edited.
bool IsEditCopy(const std::string& path);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_EXPECTATION_H_
