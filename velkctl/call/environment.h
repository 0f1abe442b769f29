// environment.h - the environment that velkctl gives the device's tools, and the caller's own.
#ifndef VELKCTL_CALL_ENVIRONMENT_H_
#define VELKCTL_CALL_ENVIRONMENT_H_

#include <string>

#include "velkctl/files/tool_run.h"

namespace velkctl {

// True if the locale of the environment has UTF-8 for its characters. Call it before
// FixEnvironment().
bool HasUtf8Locale();

// Gives this process and all it starts the C locale and kToolFolders, and takes away the variables
// that shells run or read code from. In a locale such as Japanese Shift_JIS, sed(1) takes a
// backslash for a part of the character before it, and a text would end its command.
void FixEnvironment();

// The PATH from before FixEnvironment(), or the present one if that is not in force: for advice on
// a tool that lies elsewhere, not to run one.
std::string CallersPath();

}  // namespace velkctl

#endif  // VELKCTL_CALL_ENVIRONMENT_H_
