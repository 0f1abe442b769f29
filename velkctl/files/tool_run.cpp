// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_run.cpp - finds a tool of the device as a shell does, and runs it with a time limit.
#include "velkctl/files/tool_run.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"

extern char** environ;

namespace velkctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPause{10};
constexpr std::chrono::milliseconds kLook{100};
constexpr size_t kMostOutput = 64 * 1024;

bool IsExecutable(const std::string& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) &&
           faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

std::optional<std::string> FindIn(std::string_view folders, std::string_view name) {
    for (;;) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        // An empty name is the current folder.
        const std::string path =
            std::string(folder.empty() ? "." : folder).append("/").append(name);
        if (IsExecutable(path)) {
            return path;
        }
        if (folder.size() == folders.size()) {
            return std::nullopt;
        }
        folders.remove_prefix(folder.size() + 1);
    }
}

// The standard streams of a started tool, a process group of its own to kill it by, and no blocked
// signals: a daemon that it starts must end by SIGTERM, also if velkctl holds signals back.
class SpawnPlan {
  public:
    explicit SpawnPlan(int output) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setpgroup(&attributes_, 0);
        sigset_t none;
        (void)sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
    }
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    // Returns -1 if it cannot be started.
    pid_t Start(const std::string& path, const std::vector<std::string>& words) const {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        pid_t pid = -1;
        const int error =
            posix_spawn(&pid, path.c_str(), &actions_, &attributes_, arguments.data(), environ);
        return error == 0 ? pid : -1;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

// The end of the time of a tool.
struct Limit {
    Clock::time_point deadline;
    std::function<bool()> must_stop{};

    bool is_reached() const { return Clock::now() >= deadline || (must_stop && must_stop()); }
    // The longest time until the next look at it.
    std::chrono::milliseconds pause() const {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        return must_stop ? std::min(left, kLook) : left;
    }
};

// Reads up to the end of the output; false if the limit comes first.
bool ReadOutput(int fd, const Limit& limit, std::string& output) {
    char block[4096];
    while (!limit.is_reached()) {
        pollfd waited{fd, POLLIN, 0};
        const int left = static_cast<int>(limit.pause().count());
        const int ready = poll(&waited, 1, std::max(left, 0));
        if (ready == 0 || (ready == -1 && errno == EINTR)) {
            continue;
        }
        if (ready == -1) {
            return false;
        }
        const ssize_t count = velk::ReadSome(fd, block, sizeof(block));
        if (count <= 0) {
            return true;
        }
        if (output.size() < kMostOutput) {
            output.append(block, static_cast<size_t>(count));
        }
    }
    return false;
}

// Waits for the end of the tool; false if the limit comes first.
bool AwaitEnd(pid_t pid, const Limit& limit, int& status) {
    for (;;) {
        const pid_t ended = waitpid(pid, &status, WNOHANG);
        if (ended == pid) {
            return true;
        }
        if ((ended == -1 && errno != EINTR) || limit.is_reached()) {
            return false;
        }
        std::this_thread::sleep_for(kPause);
    }
}

}  // namespace

std::optional<std::string> FindTool(std::string_view name, std::string_view folders) {
    if (name.find('/') != std::string_view::npos) {
        const std::string path(name);
        return IsExecutable(path) ? std::optional(path) : std::nullopt;
    }
    return FindIn(folders, name);
}

std::optional<std::string> FindTool(std::string_view name) {
    const char* folders = getenv("PATH");
    return FindTool(name, folders == nullptr ? kToolFolders : folders);
}

ToolRun RunTool(const std::vector<std::string>& words, std::chrono::seconds longest,
                const std::function<bool()>& must_stop) {
    const std::optional<std::string> path = FindTool(words.front());
    int ends[2];
    if (!path || pipe2(ends, O_CLOEXEC) == -1) {
        return {};
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    const pid_t pid = SpawnPlan(write_end.get()).Start(*path, words);
    write_end.Reset();
    if (pid == -1) {
        return {};
    }
    ToolRun run;
    const Limit limit{Clock::now() + longest, must_stop};
    int status = 0;
    run.ended = ReadOutput(read_end.get(), limit, run.output) && AwaitEnd(pid, limit, status);
    if (!run.ended) {
        (void)kill(-pid, SIGKILL);
        // A tool that runs as root, as sudo does, may not be killed; its end is not awaited.
        (void)AwaitEnd(pid, {Clock::now() + std::chrono::seconds(1)}, status);
        return run;
    }
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}

}  // namespace velkctl
