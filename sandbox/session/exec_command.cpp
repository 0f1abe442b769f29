// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exec_command.cpp - executes the user's command on the device.
#include "sandbox/session/exec_command.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "sandbox/device/device_layout.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"
#include "sandbox/session/shell.h"
#include "velkctl/text/spelling.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

// The folders of system tools. The search path of an ordinary user often lacks them, but not the
// other folders in which FindProgram() looks.
constexpr const char* kSystemFolders[] = {"/usr/local/sbin", "/usr/sbin", "/sbin"};
constexpr char kDefaultPath[] = "/usr/local/bin:/usr/bin:/bin";

std::string SearchPath(const std::string& program_folder) {
    std::string path = std::string(kStandInFolder) + ":" + program_folder + ":" +
                       EnvironmentOr("PATH", kDefaultPath);
    for (const char* folder : kSystemFolders) {
        if ((":" + path + ":").find(std::string(":") + folder + ":") == std::string::npos) {
            path.append(":").append(folder);
        }
    }
    return path;
}

// Explains a program of the machine that is hidden on the device.
void PrintHiddenFolder(const fs::path& program) {
    const fs::path path = fs::absolute(program).lexically_normal();
    const fs::path folder = PrivateFolderOf(path);
    std::error_code error;
    // If the program exists, the missing file is its interpreter.
    if (folder.empty() || fs::exists(path, error)) {
        return;
    }
    PrintDetail("the device has a " + folder.string() + " of its own");
    if (CanStayVisible(path.parent_path())) {
        PrintDetail("fix: start the device in the program's folder, or with");
        PrintDetail("  --writable " + path.parent_path().string());
    } else {
        PrintDetail("fix: move the program to a folder that the device shares, such as your home");
    }
}

int ReportFailedExec(const Command& command, const std::string& program, int error) {
    if (error != ENOENT) {
        PrintMessage(program + ": " + strerror(error));
        return kCannotExecute;
    }
    PrintMessage(program + ": " + strerror(error) +
                 (command.similar_verbs.empty()
                      ? ""
                      : "; did you mean " + velkctl::OneOf(command.similar_verbs) + "?"));
    if (program.find('/') != std::string::npos) {
        PrintHiddenFolder(program);
    } else if (!command.is_marked) {
        PrintDetail("fix: give a program that the device has, or see velk-sandbox --help");
    }
    return kNotFound;
}

}  // namespace

int ExecCommand(const Command& command, const std::string& program_folder) {
    std::vector<std::string> words = command.words.empty() ? ShellCommand() : command.words;
    const std::vector<char*> arguments = ArgumentsOf(words);
    (void)setenv("PATH", SearchPath(program_folder).c_str(), 1);
    (void)signal(SIGINT, SIG_DFL);
    (void)signal(SIGQUIT, SIG_DFL);
    (void)execvp(arguments[0], arguments.data());
    return ReportFailedExec(command, words[0], errno);
}

}  // namespace sandbox
