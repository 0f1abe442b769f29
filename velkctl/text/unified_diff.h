// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unified_diff.h - the differences of two texts, in the form that patch(1) takes.
#ifndef VELKCTL_TEXT_UNIFIED_DIFF_H_
#define VELKCTL_TEXT_UNIFIED_DIFF_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// One of two texts that are compared.
struct DiffSide {
    std::string name;  // the path; "/dev/null" for a missing file
    std::string_view text;
};

// Returns the lines of the diff, without newlines: two names, then pieces with three equal lines
// around each change. Empty if the texts are equal. Very long texts with many changes are shown as
// replaced from the first different line to the last.
std::vector<std::string> UnifiedDiff(const DiffSide& before, const DiffSide& after);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_UNIFIED_DIFF_H_
