// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_run.h - finds a tool of the device as a shell does, and runs it with a time limit.
#ifndef VELKCTL_FILES_TOOL_RUN_H_
#define VELKCTL_FILES_TOOL_RUN_H_

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// The folders where velkctl and its tools look for programs. sudo looks in the same ones.
inline constexpr char kToolFolders[] =
    "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

// Returns the path of the tool in these folders, a list as in PATH; nothing if none has it. A name
// with a slash is its own path.
std::optional<std::string> FindTool(std::string_view name, std::string_view folders);
// Returns the path where a shell finds it.
std::optional<std::string> FindTool(std::string_view name);

struct ToolRun {
    bool ended = false;    // in time
    int status = -1;       // as in $? of a shell, if it ended
    std::string output{};  // standard output, at most 64 KiB of it
};

inline constexpr std::chrono::seconds kLongestRun{5};

// Runs a tool without input and without standard error. A tool that takes longer is killed, or one
// that `must_stop` does not let go on; it is called several times a second.
ToolRun RunTool(const std::vector<std::string>& words, std::chrono::seconds longest = kLongestRun,
                const std::function<bool()>& must_stop = {});

}  // namespace velkctl

#endif  // VELKCTL_FILES_TOOL_RUN_H_
