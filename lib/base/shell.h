// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell.h - formatted shell lines, and those that put an edit copy in place.
#ifndef VELK_BASE_SHELL_H_
#define VELK_BASE_SHELL_H_

#include <cstddef>
#include <string>

namespace velk {

// A shell line in its 256-byte buffer. A line that does not fit is never run: a truncated command
// line could name another file or another address.
class CommandLine {
  public:
    [[gnu::format(printf, 2, 3)]] explicit CommandLine(const char* format, ...);

    bool fits() const { return length_ >= 0 && static_cast<size_t>(length_) < sizeof(text_); }

    // Runs the line with SystemCommand() and returns its result. If the line does not fit, logs
    // that and returns LIB_VELK_INVALID_PARAMETER.
    int Run() const;

  private:
    char text_[256];
    int length_;  // the length of the whole line, also if it does not fit
};

// The two lines that put an edit copy in place, in this order.
CommandLine CopyingLine(const std::string& source, const std::string& target);
CommandLine RemovingLine(const std::string& source);

}  // namespace velk

#endif  // VELK_BASE_SHELL_H_
