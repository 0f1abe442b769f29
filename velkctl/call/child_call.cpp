// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// child_call.cpp - runs a command in a process of its own, so that it can be stopped.
#include "velkctl/call/child_call.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <limits.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "velkctl/call/library_call.h"
#include "velkctl/call/pause.h"
#include "velkctl/files/tool_output.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {
namespace {

// The message of the process. It is small enough for one write to a pipe.
struct Message {
    int result;
    Data data;
};
static_assert(sizeof(Message) <= PIPE_BUF);

using Milliseconds = std::chrono::milliseconds;

// The pause between two looks at the tools that are to end.
constexpr Milliseconds kEndPause{10};
// A tool that is asked to end has this time.
constexpr Milliseconds kEndTime{1000};
constexpr int kNoSignal = 0;
constexpr size_t kMostOutput = 64 * 1024;

// A file in memory: unlike a pipe, it does not stop a tool that continues in the background.
velk::UniqueFd MakeOutputFile() {
    return velk::UniqueFd(memfd_create("velkctl", MFD_CLOEXEC));
}

[[noreturn]] void Serve(const Command& command, const Data& data, const sigset_t& mask,
                        pid_t parent, int answer_fd, int output_fd) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    (void)prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (getppid() != parent) {
        _exit(1);  // velkctl has ended already
    }
    (void)setsid();
    (void)dup2(output_fd, STDOUT_FILENO);
    (void)dup2(output_fd, STDERR_FILENO);
    (void)sigprocmask(SIG_SETMASK, &mask, nullptr);
    const Answer answer = CallLibrary(command, data);
    const Message message{answer.result, answer.data};
    if (write(answer_fd, &message, sizeof(message)) != sizeof(message)) {
        _exit(1);  // without flushing: the buffers hold output of velkctl
    }
    for (;;) {
        (void)pause();  // until velkctl ends this process
    }
}

std::vector<RunningTool> Named(const std::vector<Process>& processes) {
    std::vector<RunningTool> tools;
    for (const Process& process : processes) {
        // A process without a command line has ended since.
        if (const std::string command = CommandOf(process.id); !command.empty()) {
            tools.push_back({process.id, command});
        }
    }
    return tools;
}

}  // namespace

ChildCall::ChildCall(const Command& command, const Data& data, const StopSignals& signals)
    : output_(MakeOutputFile()) {
    (void)fflush(nullptr);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) == -1) {
        start_error_ = errno;
        return;
    }
    answer_.Reset(ends[0]);
    const velk::UniqueFd sender(ends[1]);
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        Serve(command, data, signals.before(), parent, sender.get(), output_.get());
    }
    if (process_ == -1) {
        start_error_ = errno;
    }
}

ChildCall::~ChildCall() {
    if (process_ != -1) {
        End();
    }
}

std::optional<Answer> ChildCall::TakeAnswer() {
    Message message{};
    ssize_t got = 0;
    do {
        got = read(answer_.get(), &message, sizeof(message));
    } while (got == -1 && errno == EINTR);
    if (got != sizeof(message)) {
        Reap();
        return std::nullopt;
    }
    return Answer{.result = message.result, .data = message.data};
}

std::vector<std::string> ChildCall::tool_output() const {
    std::string text(kMostOutput, '\0');
    const ssize_t got = pread(output_.get(), text.data(), text.size(), 0);
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return OutputLines(text);
}

std::vector<RunningTool> ChildCall::Tools() const {
    std::vector<Process> processes = Descendants();
    std::erase_if(processes, [&](const Process& process) { return process.session != process_; });
    return Named(processes);
}

// A stopped process starts no further tool, and remains the parent of those that daemons leave.
std::vector<RunningTool> ChildCall::Stop(Milliseconds grace) {
    if (process_ == -1) {
        return {};  // kill(2) would send the signals to all processes
    }
    (void)kill(process_, SIGSTOP);
    if (!TryToEnd(kNoSignal, grace) && !TryToEnd(SIGTERM, kEndTime)) {
        (void)TryToEnd(SIGKILL, kEndTime);
    }
    std::vector<RunningTool> left = Named(Descendants());
    End();
    return left;
}

std::vector<Process> ChildCall::Descendants() const {
    return DescendantsOf(process_, ListProcesses());
}

// Sends the signal to all tools, again to those that were started meanwhile. Returns true as soon
// as no tool is left.
bool ChildCall::TryToEnd(int signal, Milliseconds longest) const {
    for (Milliseconds left = longest;; left -= kEndPause) {
        const std::vector<Process> tools = Descendants();
        if (tools.empty() || left <= Milliseconds::zero()) {
            return tools.empty();
        }
        for (const Process& tool : tools) {
            (void)kill(tool.id, signal);
        }
        Pause(kEndPause);
    }
}

void ChildCall::End() {
    (void)kill(process_, SIGKILL);
    Reap();
}

void ChildCall::Reap() {
    int status = 0;
    while (waitpid(process_, &status, 0) == -1 && errno == EINTR) {
    }
    end_signal_ = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    process_ = -1;
}

}  // namespace velkctl
