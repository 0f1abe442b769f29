// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_line.h - reads the command line and runs the verb in it.
#ifndef VELKCTL_CLI_COMMAND_LINE_H_
#define VELKCTL_CLI_COMMAND_LINE_H_

#include <string>
#include <vector>

#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Returns kJson if the arguments have --json at any place, even if they are not valid.
Report::Form RequestedForm(const std::vector<std::string>& arguments);

// Runs the arguments after the program's name. Reports a usage that is not valid and does nothing
// else.
ExitStatus RunCommandLine(const std::vector<std::string>& arguments, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CLI_COMMAND_LINE_H_
