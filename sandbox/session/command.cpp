// command.cpp - the command that runs on the device.
#include "sandbox/session/command.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/process/printable.h"
#include "sandbox/process/programs.h"
#include "sandbox/session/stand_ins.h"

namespace sandbox {
namespace {

// The system tools lie here; an ordinary user's search path often lacks these folders.
constexpr const char* kSystemFolders[] = {"/usr/local/sbin", "/usr/sbin", "/sbin"};
constexpr char kDefaultPath[] = "/usr/local/bin:/usr/bin:/bin";
constexpr char kDefaultShell[] = "/bin/sh";

std::string Environment(const char* name, const char* otherwise) {
    const char* value = getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
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

int ExitStatusOf(int wait_status) {
    return WIFSIGNALED(wait_status) ? kSignalBase + WTERMSIG(wait_status)
                                    : WEXITSTATUS(wait_status);
}

void Say(const std::string& text) {
    (void)fprintf(stderr, "velk-sandbox: %s\n", Printable(text).c_str());
}

int BecomeCommand(const std::vector<std::string>& command, const std::string& program_folder) {
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
    Say(words[0] + ": " + strerror(error));
    return error == ENOENT ? kNotFound : kCannotExecute;
}

}  // namespace sandbox
