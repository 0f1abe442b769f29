// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// started_programs.h - stand-ins for the functions of libc that start programs: a fuzz target
// starts none.
#ifndef TESTS_FUZZ_KIT_STARTED_PROGRAMS_H_
#define TESTS_FUZZ_KIT_STARTED_PROGRAMS_H_

#include <functional>
#include <string>
#include <vector>

namespace fuzz {

using Words = std::vector<std::string>;

// From now on no program is started: posix_spawn(3) and popen(3) find none, and a process that
// calls execve(2) or one of its relatives ends.
void RefuseStarts();

// The stand-in runs in the place of a program, in the new process, with its words. It returns the
// exit status.
void SetStandIn(std::function<int(const Words& words)> stand_in);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_STARTED_PROGRAMS_H_
