// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fuzzer_options.h - options that every run of a fuzzer needs.
#ifndef TESTS_FUZZ_KIT_FUZZER_OPTIONS_H_
#define TESTS_FUZZ_KIT_FUZZER_OPTIONS_H_

namespace fuzz {

// Adds the options to the arguments that the fuzzer reads next.
void AddFuzzerOptions(int* argc, char*** argv);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_FUZZER_OPTIONS_H_
