// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// environment.h - the environment that velkctl gives the device's tools, and the caller's own.
#ifndef VELKCTL_CALL_ENVIRONMENT_H_
#define VELKCTL_CALL_ENVIRONMENT_H_

#include <string>

#include "velkctl/files/tool_run.h"

namespace velkctl {

// True if the locale of the environment has UTF-8 for its characters. Call it before
// FixEnvironment().
bool HasUtf8Locale();

// Sets the C locale and kToolFolders for this process and its children, and removes the variables
// that make shells run or read code. In a locale such as Japanese Shift_JIS, sed(1) reads a
// backslash as a part of the character before it, and a text could end its command.
void FixEnvironment();

// Returns the PATH from before FixEnvironment(), or the present one if it was not called. It is for
// advice about a tool in another folder, not for running tools.
std::string CallersPath();

}  // namespace velkctl

#endif  // VELKCTL_CALL_ENVIRONMENT_H_
