// terminal.h - what velkctl writes, safe to show on a terminal.
#ifndef VELKCTL_TERMINAL_H_
#define VELKCTL_TERMINAL_H_

#include <string>
#include <string_view>

#include "velkctl/exit_status.h"

namespace velkctl {

// The bytes as one line of ASCII: a byte that is none or that controls the terminal is written
// \x1b, a backslash twice.
std::string Printable(std::string_view bytes);

// A word from the command line, to be named in a message: 'word'.
std::string Quoted(std::string_view word);

// Writes to standard output, as it stands.
void Print(std::string_view text);

// Writes what went wrong as one line to standard error.
void Complain(std::string_view problem);

// Complains about a usage that nothing is done for.
ExitStatus Refuse(std::string_view problem);

// Hands over what was printed; complains and is false when it got lost, as on a full disk.
bool FinishPrinting();

}  // namespace velkctl

#endif  // VELKCTL_TERMINAL_H_
