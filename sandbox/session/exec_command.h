// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exec_command.h - executes the user's command on the device.
#ifndef SANDBOX_SESSION_EXEC_COMMAND_H_
#define SANDBOX_SESSION_EXEC_COMMAND_H_

#include <string>
#include <vector>

namespace sandbox {

struct Command {
    std::vector<std::string> words;  // empty: a shell
    bool is_marked = false;          // it was given after "--"
    // The subcommands that the first word could be a misspelling of.
    std::vector<std::string> similar_verbs{};
};

// Replaces this process by the command, as execvp(3) does. The stand-ins and `program_folder` come
// first in the command's search path. If the command cannot be run, prints the reason and returns
// the exit status.
int ExecCommand(const Command& command, const std::string& program_folder);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_EXEC_COMMAND_H_
