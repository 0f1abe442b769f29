// command_line.h - reads the command line and runs the verb in it.
#ifndef VELKCTL_CLI_COMMAND_LINE_H_
#define VELKCTL_CLI_COMMAND_LINE_H_

#include <string>
#include <vector>

#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Says whether the arguments ask for JSON, wherever they do, and whatever else is wrong with them.
Report::Form FormAskedFor(const std::vector<std::string>& arguments);

// Runs the arguments behind the program's name. A wrong usage is complained about in one line, and
// nothing is done.
ExitStatus RunCommandLine(const std::vector<std::string>& arguments, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CLI_COMMAND_LINE_H_
