// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// process_list.h - the processes of the device and their descent, from /proc.
#ifndef VELKCTL_FILES_PROCESS_LIST_H_
#define VELKCTL_FILES_PROCESS_LIST_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velkctl {

struct Process {
    pid_t id = 0;
    pid_t parent = 0;
    pid_t session = 0;
    bool has_ended = false;  // ended, but not yet collected by its parent
    int64_t start = 0;       // clock ticks since boot; with the id, it identifies the process
};

// Returns the process of a /proc/PID/stat; nothing if the text is not valid.
std::optional<Process> ParseProcess(std::string_view stat);

// Returns a process; nothing if it has been collected.
std::optional<Process> FindProcess(pid_t process);

// Returns all processes, in no particular order.
std::vector<Process> ListProcesses();

// Returns the running children of a process, their children and so on, parents before children.
std::vector<Process> DescendantsOf(pid_t ancestor, const std::vector<Process>& processes);

// Returns the arguments of a process with a NUL after each. Empty if it has ended.
std::string CommandLineOf(pid_t process);
// Returns the command line of a process: "ifup eth0". Empty if it has ended.
std::string CommandOf(pid_t process);

}  // namespace velkctl

#endif  // VELKCTL_FILES_PROCESS_LIST_H_
