// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// guardian_process.cpp - starts the guardian of a change, from the run that makes the change.
#include "velkctl/guardian/guardian_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "velkctl/files/process_list.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

// The guardian asks systemd for its place first, which takes 5 seconds at the most.
constexpr int kReadyMilliseconds = 20'000;
constexpr int kFirstFree = 10;
constexpr int kCannotStart = 127;  // as shells report it
constexpr size_t kLongestNumber = 16;
constexpr const char* kNull = "/dev/null";

struct Pipe {
    velk::UniqueFd read_end;
    velk::UniqueFd write_end;
};

bool Open(Pipe& pipe) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) == -1) {
        return false;
    }
    pipe.read_end.Reset(ends[0]);
    pipe.write_end.Reset(ends[1]);
    return true;
}

Problem ProblemOfStart(std::string detail) {
    return {.message = "apply: the guardian of the change could not be started",
            .detail = std::move(detail) + "; nothing was changed"};
}

// The limit of descriptors may be a thousand million: they are listed, not counted.
std::vector<int> OpenDescriptors() {
    std::vector<int> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    while (const dirent* item = folder == nullptr ? nullptr : readdir(folder.get())) {
        if (const std::optional<int> fd = ParseNumber<int>(item->d_name)) {
            found.push_back(*fd);
        }
    }
    return found;
}

// Gives the new process no descriptor but these two. Those of the caller may be a terminal, or a
// pipe with a reader that waits for its end.
void KeepOnly(int lifeline, int ready) {
    const int low_lifeline = fcntl(lifeline, F_DUPFD, kFirstFree);
    const int low_ready = fcntl(ready, F_DUPFD, kFirstFree);
    const int null = open(kNull, O_RDWR);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        (void)dup2(null, fd);
    }
    (void)dup2(low_lifeline, kLifelineFd);
    (void)dup2(low_ready, kReadyFd);
    for (const int fd : OpenDescriptors()) {
        if (fd > kReadyFd) {
            (void)close(fd);
        }
    }
}

[[noreturn]] void BecomeGuardian(const std::string& program, const std::string& id,
                                 const std::string& caller, int lifeline, int ready) {
    (void)setsid();
    if (chdir("/") == -1) {
        _exit(kCannotStart);
    }
    sigset_t none;
    (void)sigemptyset(&none);
    (void)sigprocmask(SIG_SETMASK, &none, nullptr);
    KeepOnly(lifeline, ready);
    const std::string name(kGuardianName);
    (void)execl(program.c_str(), name.c_str(), id.c_str(), caller.c_str(),
                static_cast<char*>(nullptr));
    _exit(kCannotStart);
}

// Returns the number of the guardian; 0 if it has ended or is not ready in time.
pid_t AwaitReady(int fd) {
    pollfd ready{fd, POLLIN, 0};
    int found = 0;
    do {
        found = poll(&ready, 1, kReadyMilliseconds);
    } while (found == -1 && errno == EINTR);
    std::array<char, kLongestNumber> text{};
    const ssize_t count = found == 1 ? velk::ReadSome(fd, text.data(), text.size()) : 0;
    const std::string_view number(text.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
    return ParseNumber<pid_t>(number).value_or(0);
}

// Returns the terminal of this run; empty if it has none.
std::string TerminalName() {
    for (const int fd : {STDERR_FILENO, STDOUT_FILENO, STDIN_FILENO}) {
        std::array<char, 64> name{};
        if (ttyname_r(fd, name.data(), name.size()) == 0) {
            return name.data();
        }
    }
    return "";
}

GuardianFacts FactsOf(pid_t keeper, pid_t guardian) {
    GuardianFacts facts{keeper, guardian, TerminalName(), getsid(0)};
    const std::optional<Process> leader = FindProcess(facts.session);
    facts.session_start = leader ? leader->start : 0;
    return facts;
}

}  // namespace

std::optional<Problem> GuardianProcess::Start(const std::string& id, GuardianFacts& facts) {
    Pipe lifeline;
    Pipe ready;
    if (!Open(lifeline) || !Open(ready)) {
        return ProblemOfStart(strerror(errno));
    }
    const std::string caller = std::to_string(getpid());
    (void)fflush(nullptr);
    const pid_t keeper = fork();
    if (keeper == 0) {
        BecomeGuardian(program_, id, caller, lifeline.read_end.get(), ready.write_end.get());
    }
    if (keeper == -1) {
        return ProblemOfStart(strerror(errno));
    }
    ready.write_end.Reset();
    const pid_t guardian = AwaitReady(ready.read_end.get());
    if (guardian == 0) {
        (void)kill(keeper, SIGKILL);
        (void)waitpid(keeper, nullptr, 0);
        return ProblemOfStart("it has ended or did not answer");
    }
    facts = FactsOf(keeper, guardian);
    lifeline_ = std::move(lifeline.write_end);
    return std::nullopt;
}

}  // namespace velkctl
