// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// check.h - the hard checks of every fuzz target.
#ifndef TESTS_FUZZ_KIT_CHECK_H_
#define TESTS_FUZZ_KIT_CHECK_H_

#include <string_view>

namespace fuzz {

// The status of a target that gets no private device, as SKIP_RETURN_CODE in CMakeLists.txt.
inline constexpr int kSkipped = 77;

// If the rule does not hold, prints it and ends the process, so that the fuzzer keeps the input.
void Check(bool holds, std::string_view rule);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_CHECK_H_
