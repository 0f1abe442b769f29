// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer.h - the expected answer of a get.
#ifndef TESTS_FUZZ_KIT_ANSWER_H_
#define TESTS_FUZZ_KIT_ANSWER_H_

#include <string>

namespace fuzz {

struct Answer {
    bool succeeds;
    std::string bytes;  // the first bytes of the data; the others are zero
};

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_ANSWER_H_
