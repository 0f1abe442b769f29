// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// programs.cpp - finds and runs programs of the system.
#include "sandbox/process/programs.h"

#include <cerrno>
#include <utility>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/process/exit_status.h"

namespace sandbox {
namespace {

// The folders of programs on the machine. velkctl's kToolFolders are the folders on the device.
constexpr const char* kFolders[] = {"/usr/local/sbin/", "/usr/local/bin/", "/usr/sbin/",
                                    "/usr/bin/",        "/sbin/",          "/bin/"};

class OutputTo {
  public:
    explicit OutputTo(int output) {
        (void)posix_spawn_file_actions_init(&actions_);
        (void)posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    }
    OutputTo(const OutputTo&) = delete;
    OutputTo& operator=(const OutputTo&) = delete;
    ~OutputTo() { (void)posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

}  // namespace

std::vector<std::string> FindPrograms(const std::string& name) {
    std::vector<std::string> paths;
    for (const char* folder : kFolders) {
        if (std::string path = folder + name; access(path.c_str(), X_OK) == 0) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

std::string FindProgram(const std::string& name) {
    const std::vector<std::string> paths = FindPrograms(name);
    return paths.empty() ? "" : paths.front();
}

std::vector<char*> ArgumentsOf(std::vector<std::string>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    return arguments;
}

int RunProgram(std::vector<std::string> words, int output) {
    const std::vector<char*> arguments = ArgumentsOf(words);
    const OutputTo actions(output);
    pid_t program;
    if (posix_spawn(&program, arguments[0], actions.get(), nullptr, arguments.data(), environ) !=
        0) {
        return kNotFound;
    }
    int status;
    while (waitpid(program, &status, 0) == -1) {
        if (errno != EINTR) {
            return kNotFound;
        }
    }
    return ExitStatusOf(status);
}

}  // namespace sandbox
