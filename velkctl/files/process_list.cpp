// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// process_list.cpp - the processes of the device and their descent, from /proc.
#include "velkctl/files/process_list.h"

#include <algorithm>

#include <dirent.h>

#include "lib/base/words.h"
#include "velkctl/files/text_file.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

// The fields between the session and the start, see proc(5).
constexpr int kWordsBeforeStart = 15;

std::string FolderOf(std::string_view process) {
    return "/proc/" + std::string(process);
}

bool Contains(const std::vector<Process>& processes, pid_t id) {
    return std::ranges::find(processes, id, &Process::id) != processes.end();
}

// A number may be used again while the list is read, so a process can seem to descend from itself.
void AddChildren(pid_t parent, const std::vector<Process>& processes, std::vector<Process>& found) {
    for (const Process& process : processes) {
        if (process.parent == parent && !Contains(found, process.id)) {
            found.push_back(process);
        }
    }
}

}  // namespace

std::optional<Process> ParseProcess(std::string_view stat) {
    Process process;
    process.id = ParseNumber<pid_t>(velk::TakeWord(stat)).value_or(0);
    // The name may contain blanks and parentheses.
    const size_t name_end = stat.rfind(')');
    if (process.id <= 0 || name_end == std::string_view::npos) {
        return std::nullopt;
    }
    stat.remove_prefix(name_end + 1);
    const std::string_view state = velk::TakeWord(stat);
    process.has_ended = state == "Z" || state == "X";
    process.parent = ParseNumber<pid_t>(velk::TakeWord(stat)).value_or(0);
    (void)velk::TakeWord(stat);  // its process group
    process.session = ParseNumber<pid_t>(velk::TakeWord(stat)).value_or(0);
    for (int i = 0; i < kWordsBeforeStart; ++i) {
        (void)velk::TakeWord(stat);
    }
    process.start = ParseNumber<int64_t>(velk::TakeWord(stat)).value_or(0);
    return process;
}

std::optional<Process> FindProcess(pid_t process) {
    return ParseProcess(ReadTextFile(FolderOf(std::to_string(process)) + "/stat").bytes);
}

std::vector<Process> ListProcesses() {
    std::vector<Process> processes;
    DIR* folder = opendir("/proc");
    if (folder == nullptr) {
        return processes;
    }
    while (const dirent* entry = readdir(folder)) {
        const std::string_view name = entry->d_name;
        if (!ParseNumber<pid_t>(name)) {
            continue;
        }
        const std::string stat = ReadTextFile(FolderOf(name) + "/stat").bytes;
        if (const std::optional<Process> process = ParseProcess(stat)) {
            processes.push_back(*process);
        }
    }
    (void)closedir(folder);
    return processes;
}

std::vector<Process> DescendantsOf(pid_t ancestor, const std::vector<Process>& processes) {
    std::vector<Process> found;
    AddChildren(ancestor, processes, found);
    for (size_t at = 0; at < found.size(); ++at) {
        AddChildren(found[at].id, processes, found);
    }
    std::erase_if(found, [](const Process& process) { return process.has_ended; });
    return found;
}

std::string CommandLineOf(pid_t process) {
    return ReadTextFile(FolderOf(std::to_string(process)) + "/cmdline").bytes;
}

std::string CommandOf(pid_t process) {
    std::string command = CommandLineOf(process);
    while (command.ends_with('\0')) {
        command.pop_back();
    }
    std::ranges::replace(command, '\0', ' ');
    return command;
}

}  // namespace velkctl
