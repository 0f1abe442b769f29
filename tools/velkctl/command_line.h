// command_line.h - reads the command line and runs the verb in it.
#ifndef VELKCTL_COMMAND_LINE_H_
#define VELKCTL_COMMAND_LINE_H_

#include <string>
#include <vector>

#include "velkctl/exit_status.h"

namespace velkctl {

// Runs the arguments behind the program's name. A wrong usage is complained about in one line, and
// nothing is done.
ExitStatus RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace velkctl

#endif  // VELKCTL_COMMAND_LINE_H_
