// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// words.h - the words of a value or of a command line, as tests give them.
#ifndef TESTS_SUPPORT_WORDS_H_
#define TESTS_SUPPORT_WORDS_H_

#include <string>
#include <vector>

namespace testkit {

using Words = std::vector<std::string>;

}  // namespace testkit

#endif  // TESTS_SUPPORT_WORDS_H_
