// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// velkctl_run.cpp - runs velkctl.
#include "web/server/velkctl_run.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "web/server/answer.h"

namespace velkweb {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// The rules for sudo have these paths.
constexpr char kSudo[] = "/usr/bin/sudo";
constexpr char kInstalledVelkctl[] = "/usr/bin/velkctl";

constexpr size_t kPieceBytes = size_t{64} * 1024;

// In a build folder it is next to this program.
std::string VelkctlPath() {
    std::error_code unseen;
    const fs::path folder = fs::read_symlink("/proc/self/exe", unseen).parent_path();
    for (const char* place : {"velkctl", "../bin/velkctl"}) {
        if (const fs::path path = folder / place; fs::exists(path, unseen)) {
            return path;
        }
    }
    return kInstalledVelkctl;
}

// The input stays in memory: it may have keys.
velk::UniqueFd InputOf(const VelkctlRun& run) {
    velk::UniqueFd fd(memfd_create("velk-web", MFD_CLOEXEC));
    if (fd.get() < 0 || !velk::WriteAll(fd.get(), run.input) || lseek(fd.get(), 0, SEEK_SET) != 0) {
        return velk::UniqueFd();
    }
    return fd;
}

[[noreturn]] void Execute(const std::vector<std::string>& command, int input, int output) {
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nowhere < 0 || dup2(input, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 ||
        dup2(nowhere, STDERR_FILENO) < 0 || close_range(STDERR_FILENO + 1, ~0U, 0) != 0 ||
        chdir("/") != 0) {
        _exit(127);
    }
    (void)signal(SIGPIPE, SIG_DFL);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    char path[] = "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
    char locale[] = "LC_ALL=C";
    char* environment[] = {path, locale, nullptr};
    execve(arguments.front(), arguments.data(), environment);
    _exit(127);
}

// Reads to the end. Returns nothing after the deadline, for a longer output and on failure.
std::optional<std::string> ReadOutput(int fd, Clock::time_point deadline, bool* late) {
    std::string text;
    std::string piece(kPieceBytes, '\0');
    while (text.size() <= kLongestDocument) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd output{fd, POLLIN, 0};
        const int ready = left.count() > 0 ? poll(&output, 1, static_cast<int>(left.count())) : 0;
        if (ready == -1 && errno == EINTR) {
            continue;
        }
        *late = ready == 0;
        const ssize_t count = ready == 1 ? velk::ReadSome(fd, piece.data(), piece.size()) : -1;
        if (count <= 0) {
            return count == 0 ? std::optional(std::move(text)) : std::nullopt;
        }
        text.append(piece, 0, static_cast<size_t>(count));
    }
    return std::nullopt;
}

}  // namespace

// The others read files, or send the daemon a message without a reply. A confirmation is urgent.
bool AsksDaemon(const VelkctlRun& run) {
    constexpr std::array<std::string_view, 6> kVerbs{"apply", "doctor", "revert",
                                                     "show",  "status", "undo"};
    return std::ranges::find(kVerbs, run.words.front()) != kVerbs.end();
}

std::vector<std::string> CommandOf(const VelkctlRun& run, bool is_root) {
    std::vector<std::string> command;
    if (is_root) {
        command = {VelkctlPath()};
    } else {
        command = {kSudo, "-n", "--", kInstalledVelkctl};
    }
    command.insert(command.end(), run.words.begin(), run.words.end());
    command.emplace_back("--json");
    return command;
}

pid_t StartVelkctl(const VelkctlRun& run, int output) {
    const std::vector<std::string> command = CommandOf(run, geteuid() == 0);
    const velk::UniqueFd input = InputOf(run);
    if (input.get() < 0) {
        return 0;
    }
    const pid_t child = fork();
    if (child == 0) {
        Execute(command, input.get(), output);
    }
    return child > 0 ? child : 0;
}

std::optional<std::string> RunVelkctl(const VelkctlRun& run, int seconds, bool* late) {
    *late = false;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    const velk::UniqueFd reader(ends[0]);
    velk::UniqueFd writer(ends[1]);
    const pid_t child = StartVelkctl(run, writer.get());
    writer.Reset();
    if (child == 0) {
        return std::nullopt;
    }
    std::optional<std::string> text =
        ReadOutput(reader.get(), Clock::now() + std::chrono::seconds(seconds), late);
    if (!text) {
        (void)kill(child, SIGTERM);
        return std::nullopt;
    }
    (void)waitpid(child, nullptr, 0);
    return IsDocument(*text) ? std::move(text) : std::nullopt;
}

bool IsDocument(const std::string& text) {
    return text.starts_with('{') && Json::accept(text);
}

}  // namespace velkweb
