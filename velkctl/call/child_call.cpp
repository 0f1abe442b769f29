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

namespace velkctl {
namespace {

// The message of the process. It is small enough for one write to a pipe.
struct Message {
    int result;
    Data data;
};
static_assert(sizeof(Message) <= PIPE_BUF);

// velkctl waits 100 times 10 ms for tools.
constexpr int kToolTries = 100;
constexpr timespec kToolPause{0, 10 * 1000 * 1000};
constexpr size_t kMostOutput = 8192;

// A file in memory: unlike a pipe, it does not stop a tool that continues in the background.
velk::UniqueFd MakeOutputFile() {
    return velk::UniqueFd(memfd_create("velkctl", MFD_CLOEXEC));
}

[[noreturn]] void Serve(const Command& command, const Data& data, const sigset_t& mask,
                        pid_t parent, int answer_fd, int output_fd) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(1);  // velkctl has ended already
    }
    (void)setsid();
    (void)dup2(output_fd, STDOUT_FILENO);
    (void)dup2(output_fd, STDERR_FILENO);
    (void)sigprocmask(SIG_SETMASK, &mask, nullptr);
    const Answer answer = CallLibrary(command, data);
    const Message message{answer.result, answer.data};
    const bool is_sent = write(answer_fd, &message, sizeof(message)) == sizeof(message);
    _exit(is_sent ? 0 : 1);  // without flushing: the buffers hold output of velkctl
}

// Waits until all programs of the killed process have ended. Returns false after a second.
bool WaitForTools() {
    for (int i = 0; i < kToolTries; ++i) {
        pid_t ended = 0;
        do {
            ended = waitpid(-1, nullptr, WNOHANG);
        } while (ended > 0);
        if (ended == -1) {
            return true;
        }
        (void)nanosleep(&kToolPause, nullptr);
    }
    return false;
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
        (void)Stop();
    }
}

std::optional<Answer> ChildCall::TakeAnswer() {
    Message message{};
    ssize_t got = 0;
    do {
        got = read(answer_.get(), &message, sizeof(message));
    } while (got == -1 && errno == EINTR);
    Reap();
    if (got != sizeof(message)) {
        return std::nullopt;
    }
    return Answer{.result = message.result, .data = message.data};
}

std::vector<std::string> ChildCall::tool_output() const {
    std::string text(kMostOutput, '\0');
    const ssize_t got = pread(output_.get(), text.data(), text.size(), 0);
    std::string_view rest(text.data(), got > 0 ? static_cast<size_t>(got) : 0);
    std::vector<std::string> lines;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (!line.empty() && std::ranges::find(lines, line) == lines.end()) {
            lines.emplace_back(line);
        }
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return lines;
}

bool ChildCall::Stop() {
    (void)prctl(PR_SET_CHILD_SUBREAPER, 1);  // so that its tools can be waited for
    (void)kill(process_, SIGKILL);
    Reap();
    return WaitForTools();
}

void ChildCall::Reap() {
    int status = 0;
    while (waitpid(process_, &status, 0) == -1 && errno == EINTR) {
    }
    end_signal_ = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    process_ = -1;
}

}  // namespace velkctl
