// tool_run.h - runs a tool of the device for a moment, and finds it as a shell does.
#ifndef VELKCTL_FILES_TOOL_RUN_H_
#define VELKCTL_FILES_TOOL_RUN_H_

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// The folders where velkctl and its tools look for programs. sudo looks in the same ones.
inline constexpr char kToolFolders[] =
    "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

// Where the tool is in these folders, in the form of PATH; nothing when it is in none. A name with
// a slash is its own place.
std::optional<std::string> FindTool(std::string_view name, std::string_view folders);
// Where a shell finds it.
std::optional<std::string> FindTool(std::string_view name);

struct ToolRun {
    bool ended = false;    // in time
    int status = -1;       // as the shell has it in $?, of one that ended
    std::string output{};  // standard output; what is beyond 64 KiB is left out
};

inline constexpr std::chrono::milliseconds kLongestToolRun{5000};

// Runs a tool without input, its errors unseen. One that takes longer is killed.
ToolRun RunTool(const std::vector<std::string>& words,
                std::chrono::milliseconds longest = kLongestToolRun);

}  // namespace velkctl

#endif  // VELKCTL_FILES_TOOL_RUN_H_
