// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// programs.h - finds and runs programs of the system.
#ifndef SANDBOX_PROCESS_PROGRAMS_H_
#define SANDBOX_PROCESS_PROGRAMS_H_

#include <string>
#include <vector>

#include <unistd.h>

namespace sandbox {

// Returns the path of a program in a system folder, or an empty text.
std::string FindProgram(const std::string& name);

// Returns all its paths in system folders.
std::vector<std::string> FindPrograms(const std::string& name);

// Returns the argument vector for execv(3). It points into `words`.
std::vector<char*> ArgumentsOf(std::vector<std::string>& words);

// Runs the program at the path words[0] and waits for it. `output` is its standard output. Returns
// its exit status, see ExitStatusOf(), or 127 if it cannot be run.
int RunProgram(std::vector<std::string> words, int output = STDOUT_FILENO);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PROGRAMS_H_
