// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell.h - the shell that a device starts if no command is given.
#ifndef SANDBOX_SESSION_SHELL_H_
#define SANDBOX_SESSION_SHELL_H_

#include <string>
#include <vector>

#include "sandbox/device/sample_files.h"

namespace sandbox {

// Returns the value of an environment variable, or `fallback` if it is unset or empty.
std::string EnvironmentOr(const char* name, const char* fallback);

// Returns the words that start the user's shell: that of SHELL, or bash if SHELL is unset or the
// plain sh, which can neither edit nor complete a line. Call it on the device.
std::vector<std::string> ShellCommand();

// Returns the completions of `folder` and a start file for bash that loads them after the user's
// own start file. A completion that is not installed is left out.
std::vector<SampleFile> ShellFiles(const std::string& folder);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_SHELL_H_
