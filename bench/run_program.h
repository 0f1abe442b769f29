// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// run_program.h - runs programs in the way a user does.
#ifndef BENCH_RUN_PROGRAM_H_
#define BENCH_RUN_PROGRAM_H_

#include <functional>
#include <string>
#include <vector>

namespace bench {

using Arguments = std::vector<std::string>;

// Returns a call that runs a program, found in the search path, and waits for it. Its output is
// discarded. An exit status other than 0 ends this program.
std::function<void()> Process(const Arguments& arguments);

// Returns whether the search path has a program.
bool IsInstalled(const std::string& program);

// Runs a program and returns the number that it prints.
double NumberFrom(const Arguments& arguments);

// Returns the path of a program in the build folder.
std::string Built(const std::string& name);

}  // namespace bench

#endif  // BENCH_RUN_PROGRAM_H_
