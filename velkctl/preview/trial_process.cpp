// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_process.cpp - the process of a trial, and its results.
//
// velkctl forks a process that makes the namespaces. That one forks the first process of the new
// PID namespace, which makes the copy and runs the library. When it ends, the kernel ends all tools
// that it has started.
#include "velkctl/preview/trial_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/library_call.h"
#include "velkctl/call/library_observer.h"
#include "velkctl/files/file_image.h"
#include "velkctl/preview/event_log.h"
#include "velkctl/preview/namespaces.h"
#include "velkctl/preview/observers.h"
#include "velkctl/preview/private_copy.h"
#include "velkctl/preview/records.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

constexpr size_t kMostOutput = 64 * 1024;
constexpr int kEndSeconds = 5;  // the kernel ends the processes one after the other

// Shared by the processes of a trial.
struct Trial {
    const std::vector<TrialStep>& steps;
    const CopyPlan& plan;
    const EventLog& log;
    int output;
    int nothing;  // tools that read their input find its end
};

// True if a step asks the wireless daemon.
bool Talks(const std::vector<TrialStep>& steps) {
    return std::ranges::any_of(steps, [](const TrialStep& step) {
        const std::optional<Setting> setting = FindSetting(step.id, step.interface);
        return step.type != VELK_RESTART && setting &&
               setting->row->held_in.holder == Holder::kDaemon;
    });
}

void RunSteps(const Trial& trial) {
    TrialObserver observer(trial.log);
    SetObserver(&observer);
    for (const TrialStep& step : trial.steps) {
        const Answer answer = CallLibrary({step.type, step.id, step.interface}, step.data);
        trial.log.Add(EventKind::kAnswer, RecordOf(answer));
        if (!answer.ok() && !step.is_check) {
            break;
        }
    }
    for (const PlannedFile& file : trial.plan.files) {
        trial.log.Add(EventKind::kFile, RecordOf(ReadFileImage(file.image.path)));
    }
    if (const CopyFailure failure = CheckPrivateCopy(trial.plan); failure.error != 0) {
        trial.log.Add(EventKind::kFailure, RecordOf(failure));
    }
    trial.log.Add(EventKind::kEnd, "");
}

// The first process of the namespace. It ends without flushing the output of velkctl.
[[noreturn]] void RunInCopy(const Trial& trial) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    (void)dup2(trial.nothing, STDIN_FILENO);
    (void)dup2(trial.output, STDOUT_FILENO);
    (void)dup2(trial.output, STDERR_FILENO);
    (void)!chdir("/");
    CopyFailure failure = EnterPrivateCopy(trial.plan, Talks(trial.steps));
    if (failure.error == 0) {
        failure = {"give up rights", GiveUpRights()};
    }
    if (failure.error != 0) {
        trial.log.Add(EventKind::kFailure, RecordOf(failure));
        _exit(1);
    }
    RunSteps(trial);
    _exit(0);
}

[[noreturn]] void MakeNamespaces(const Trial& trial, pid_t parent) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    (void)setsid();
    if (getppid() != parent) {
        _exit(1);
    }
    int error = EnterNamespaces();
    const pid_t first = error == 0 ? fork() : -1;
    if (first == 0) {
        RunInCopy(trial);
    }
    if (first == -1) {
        error = error == 0 ? errno : error;
        trial.log.Add(EventKind::kFailure, RecordOf(CopyFailure{"", error}));
        _exit(1);
    }
    while (waitpid(first, nullptr, 0) == -1 && errno == EINTR) {
    }
    _exit(0);
}

// Waits until the other end of the pipe is closed. Returns false after the time.
bool AwaitEnd(int fd, int timeout_seconds) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(timeout_seconds);
    pollfd end{fd, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        const int time = timeout_seconds == 0 ? -1 : std::max(static_cast<int>(left.count()), 0);
        const int ready = poll(&end, 1, time);
        if (ready != -1 || errno != EINTR) {
            return ready != 0;
        }
    }
}

std::string OutputIn(int fd) {
    std::string text(kMostOutput, '\0');
    const ssize_t got = pread(fd, text.data(), text.size(), 0);
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return text;
}

void Sort(const Event& event, TrialEnd& end) {
    if (event.kind == EventKind::kAnswer) {
        end.answers.push_back(AnswerIn(event.text));
    } else if (event.kind == EventKind::kFile) {
        end.files.push_back(ImageIn(event.text));
    } else if (event.kind == EventKind::kEnd) {
        end.is_complete = true;
    } else if (event.kind == EventKind::kFailure) {
        const CopyFailure failure = FailureIn(event.text);
        end.step = failure.step;
        end.error = failure.error;
        end.is_refused = failure.step.empty();
    } else {
        end.events.push_back(event);
    }
}

TrialEnd Failed(const char* step) {
    return {.step = step, .error = errno};
}

}  // namespace

TrialEnd RunTrialProcess(const std::vector<TrialStep>& steps, const CopyPlan& plan,
                         int timeout_seconds) {
    const EventLog log;
    const velk::UniqueFd output(memfd_create("velkctl", MFD_CLOEXEC));
    std::array<int, 2> ends{};
    const velk::UniqueFd nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!log.is_open() || output.get() == -1 || nothing.get() == -1 ||
        pipe2(ends.data(), O_CLOEXEC) == -1) {
        return Failed("open files");
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    (void)fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        MakeNamespaces({steps, plan, log, output.get(), nothing.get()}, parent);
    }
    if (process == -1) {
        return Failed("start a process");
    }
    write_end.Reset();
    TrialEnd end;
    end.timed_out = !AwaitEnd(read_end.get(), timeout_seconds);
    if (end.timed_out) {
        (void)kill(process, SIGKILL);
        (void)AwaitEnd(read_end.get(), kEndSeconds);
    }
    while (waitpid(process, nullptr, 0) == -1 && errno == EINTR) {
    }
    for (const Event& event : log.Read()) {
        Sort(event, end);
    }
    end.tool_output = OutputIn(output.get());
    return end;
}

}  // namespace velkctl
