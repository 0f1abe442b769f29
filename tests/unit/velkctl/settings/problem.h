// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// problem.h - the problem of a value, without its other parts.
#ifndef TESTS_UNIT_VELKCTL_SETTINGS_PROBLEM_H_
#define TESTS_UNIT_VELKCTL_SETTINGS_PROBLEM_H_

#include <string>

#include "support/words.h"
#include "velkctl/settings/value_kind.h"

namespace testkit {

inline std::string Problem(const velkctl::ValueKind& kind, const Words& words) {
    return kind.Parse(words).problem;
}

}  // namespace testkit

#endif  // TESTS_UNIT_VELKCTL_SETTINGS_PROBLEM_H_
