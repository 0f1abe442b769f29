// exec_command.cpp - executes the user's command on the device.
#include "sandbox/session/exec_command.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "sandbox/process/exit_status.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

// The folders of system tools. The search path of an ordinary user often lacks them.
constexpr const char* kSystemFolders[] = {"/usr/local/sbin", "/usr/sbin", "/sbin"};
constexpr char kDefaultPath[] = "/usr/local/bin:/usr/bin:/bin";
constexpr char kDefaultShell[] = "/bin/sh";

std::string Environment(const char* name, const char* fallback) {
    const char* value = getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

std::string SearchPath(const std::string& program_folder) {
    std::string path = std::string(kStandInFolder) + ":" + program_folder + ":" +
                       Environment("PATH", kDefaultPath);
    for (const char* folder : kSystemFolders) {
        if ((":" + path + ":").find(std::string(":") + folder + ":") == std::string::npos) {
            path.append(":").append(folder);
        }
    }
    return path;
}

}  // namespace

int ExecCommand(const std::vector<std::string>& command, const std::string& program_folder) {
    std::vector<std::string> words = command;
    if (words.empty()) {
        words = {Environment("SHELL", kDefaultShell)};
    }
    const std::vector<char*> arguments = ArgumentsOf(words);
    (void)setenv("PATH", SearchPath(program_folder).c_str(), 1);
    (void)signal(SIGINT, SIG_DFL);
    (void)signal(SIGQUIT, SIG_DFL);
    (void)execvp(arguments[0], arguments.data());

    const int error = errno;
    PrintMessage(words[0] + ": " + strerror(error));
    return error == ENOENT ? kNotFound : kCannotExecute;
}

}  // namespace sandbox
