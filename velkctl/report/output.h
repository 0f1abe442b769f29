// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// output.h - writes to standard output and standard error.
#ifndef VELKCTL_REPORT_OUTPUT_H_
#define VELKCTL_REPORT_OUTPUT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velkctl {

// Writes a text to standard output.
void Print(std::string_view text);

enum class Tone { kNote, kProblem };

// Writes a message to standard error, after the name of the tool. The name is red for a problem.
void PrintError(std::string_view message, Tone tone = Tone::kProblem);

// True if the descriptor is a terminal that can show colours and rewrite a line. A terminal of type
// "dumb" cannot, and neither can one of an unknown type.
bool IsTerminal(int fd);

struct TerminalSize {
    size_t columns;
    size_t rows;
};

// Returns the size of the terminal; nothing if it is unknown or there is no terminal.
std::optional<TerminalSize> TerminalSizeOf(int fd);

// Returns the text in lines for the terminal that standard output is; else the text itself.
std::string FittedToTerminal(std::string_view text);

enum class Colour {
    kBold,
    kRed,
    kYellow,
};

// Returns the text in a colour if the descriptor is a terminal that can show it and NO_COLOR is
// empty, else the text itself.
std::string Coloured(std::string_view text, Colour colour, int fd);

// Flushes standard output. If output was lost, as on a full disk, reports it and returns false.
bool FinishPrinting();

}  // namespace velkctl

#endif  // VELKCTL_REPORT_OUTPUT_H_
