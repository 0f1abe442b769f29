// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// messages.h - prints the sandbox's messages on standard error.
#ifndef SANDBOX_PROCESS_MESSAGES_H_
#define SANDBOX_PROCESS_MESSAGES_H_

#include <exception>
#include <string>

namespace sandbox {

// Prints one line on standard error, filtered by TerminalLine().
void PrintMessage(const std::string& text);

// Prints an indented line that adds to the last message.
void PrintDetail(const std::string& text);

// Prints a message. A Failure with advice gets a second line: "  fix: ADVICE".
void PrintFailure(const std::exception& error);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_MESSAGES_H_
