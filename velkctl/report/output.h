// output.h - writes to standard output and standard error.
#ifndef VELKCTL_REPORT_OUTPUT_H_
#define VELKCTL_REPORT_OUTPUT_H_

#include <string_view>

namespace velkctl {

// Writes a text to standard output.
void Print(std::string_view text);

// Writes a message to standard error, after the name of the tool.
void PrintError(std::string_view message);

// True if the descriptor is a terminal that can show colours and rewrite a line. A terminal of type
// "dumb" cannot.
bool IsTerminal(int fd);

// Flushes standard output. If output was lost, as on a full disk, reports it and returns false.
bool FinishPrinting();

}  // namespace velkctl

#endif  // VELKCTL_REPORT_OUTPUT_H_
