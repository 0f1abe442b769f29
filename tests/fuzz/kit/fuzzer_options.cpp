// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fuzzer_options.cpp - options that every run of a fuzzer needs.
#include "fuzz/kit/fuzzer_options.h"

#include <vector>

namespace fuzz {

// With a limit, a thread of the fuzzer looks at the memory each second. Its sleep(3) is the
// recorder's, which returns at once: the thread would record events without a pause, and hold the
// recorder's lock while the target forks.
void AddFuzzerOptions(int* argc, char*** argv) {
    static char no_limit[] = "-rss_limit_mb=0";
    static std::vector<char*> arguments;
    arguments.assign(*argv, *argv + *argc);
    arguments.push_back(no_limit);
    arguments.push_back(nullptr);
    *argv = arguments.data();
    ++*argc;
}

}  // namespace fuzz
