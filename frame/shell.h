// shell.h - formats a shell line and runs it.
#ifndef VELK_FRAME_SHELL_H_
#define VELK_FRAME_SHELL_H_

#include <cstddef>

namespace velk {

constexpr size_t kCommandSize = 256;  // the command line and its NUL

// Runs the formatted line with SystemCommand() and returns its result. A line that does not fit
// kCommandSize is not run: a cut command line could name another file or another address. That is
// logged and gives LIB_VELK_INVALID_PARAMETER.
[[gnu::format(printf, 1, 2)]] int RunCommand(const char* format, ...);

}  // namespace velk

#endif  // VELK_FRAME_SHELL_H_
