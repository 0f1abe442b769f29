// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell.cpp - the shell that a device starts if no command is given.
#include "sandbox/session/shell.h"

#include <cstdlib>
#include <filesystem>

#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kPlainShell[] = "/bin/sh";
constexpr const char* kCompleted[] = {"velkctl", "velk-sandbox"};
// Bash reads this file instead of ~/.bashrc.
constexpr char kUsersStartFile[] = "[ ! -r ~/.bashrc ] || . ~/.bashrc\n";

bool IsPlainShell(const fs::path& shell) {
    return shell.filename() == "sh" || shell.filename() == "dash";
}

std::string Shell() {
    const std::string shell = EnvironmentOr("SHELL", kPlainShell);
    const std::string bash = FindProgram("bash");
    return IsPlainShell(shell) && !bash.empty() ? bash : shell;
}

}  // namespace

std::string EnvironmentOr(const char* name, const char* fallback) {
    const char* value = getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

std::vector<std::string> ShellCommand() {
    const std::string shell = Shell();
    if (fs::path(shell).filename() == "bash") {
        return {shell, "--rcfile", kShellStartFile};
    }
    return {shell};
}

std::vector<SampleFile> ShellFiles(const std::string& folder) {
    std::vector<SampleFile> files;
    std::string start = kUsersStartFile;
    std::error_code error;
    for (const char* program : kCompleted) {
        const fs::path source = fs::path(folder) / program;
        const fs::path path = fs::path(kCompletionFolder) / program;
        if (fs::is_regular_file(source, error)) {
            files.push_back(MakeSample(path, ReadText(source)));
            start.append(". ").append(path).append("\n");
        }
    }
    files.push_back(MakeSample(kShellStartFile, start));
    return files;
}

}  // namespace sandbox
