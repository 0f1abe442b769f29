// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// run_program.cpp - runs programs in the way a user does.
#include "bench/run_program.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/floor.h"

namespace bench {
namespace {

// Standard output goes to `output`.
void Run(const Arguments& arguments, int output) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t process = 0;
    int status = 0;
    const int error = posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0 || waitpid(process, &status, 0) != process || status != 0) {
        GiveUp(arguments.front());
    }
}

}  // namespace

std::function<void()> Process(const Arguments& arguments) {
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    return [arguments] { Run(arguments, nowhere); };
}

bool IsInstalled(const std::string& program) {
    return system(("command -v " + program + " > /dev/null").c_str()) == 0;
}

double NumberFrom(const Arguments& arguments) {
    FILE* output = tmpfile();
    if (output == nullptr) {
        GiveUp("tmpfile");
    }
    Run(arguments, fileno(output));
    rewind(output);
    double number = 0;
    if (fscanf(output, "%lf", &number) != 1) {
        GiveUp(arguments.front());
    }
    fclose(output);
    return number;
}

std::string Built(const std::string& name) {
    return std::string(VELK_BINARY_DIR "/").append(name);
}

}  // namespace bench
