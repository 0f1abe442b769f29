// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// traced_process.cpp - follows one process with ptrace(2).
#include "schedules/kit/traced_process.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace schedules {
namespace {

constexpr int kCallStop = SIGTRAP | 0x80;  // as PTRACE_O_TRACESYSGOOD marks it
constexpr timeval kTick{0, 2'000};
constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL |
                          PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE |
                          PTRACE_O_TRACEVFORKDONE | PTRACE_O_TRACESECCOMP;

[[noreturn]] void Fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

// Has the kernel stop this process, and all it starts, before the watched calls only: a stop takes
// much longer than a call.
bool StopAtWatchedCalls() {
    std::vector<sock_filter> filter{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    };
    const std::vector<long>& calls = WatchedCalls();
    for (size_t i = 0; i < calls.size(); ++i) {
        const auto to_stop = static_cast<uint8_t>(calls.size() - i);
        filter.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(calls[i]), to_stop, 0));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

velk::UniqueFd OpenFile(pid_t id, const char* name) {
    const std::string task = "/proc/" + std::to_string(id) + "/";
    return velk::UniqueFd(open((task + name).c_str(), O_RDONLY | O_CLOEXEC));
}

std::string ReadStart(const velk::UniqueFd& fd) {
    char text[64];
    const ssize_t size = pread(fd.get(), text, sizeof(text), 0);
    return {text, static_cast<size_t>(std::max<ssize_t>(size, 0))};
}

void SkipCall([[maybe_unused]] pid_t id) {
#ifdef __x86_64__
    (void)ptrace(PTRACE_POKEUSER, id, offsetof(user, regs.orig_rax), -1L);
#endif
}

void SetResult([[maybe_unused]] pid_t id, [[maybe_unused]] long result) {
#ifdef __x86_64__
    (void)ptrace(PTRACE_POKEUSER, id, offsetof(user, regs.rax), result);
#endif
}

}  // namespace

pid_t Await(pid_t process, int& status) {
    pid_t found = -1;
    do {
        found = waitpid(process, &status, __WALL);
    } while (found == -1 && errno == EINTR);
    return found;
}

pid_t StartTraced(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == -1) {
        Fail("fork");
    }
    if (child == 0) {
        (void)signal(SIGALRM, SIG_DFL);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == -1) {
            _exit(1);
        }
        (void)raise(SIGSTOP);
        _exit(StopAtWatchedCalls() ? work() : 1);
    }
    int status = 0;
    if (Await(child, status) != child || !WIFSTOPPED(status) ||
        ptrace(PTRACE_SETOPTIONS, child, nullptr, kOptions) == -1) {
        Fail("PTRACE_TRACEME");
    }
    return child;
}

Ticks::Ticks() {
    struct sigaction action {};
    action.sa_handler = [](int) {};  // without SA_RESTART
    (void)sigaction(SIGALRM, &action, nullptr);
    const itimerval ticks{kTick, kTick};
    (void)setitimer(ITIMER_REAL, &ticks, nullptr);
    (void)sched_getaffinity(0, sizeof(processors_), &processors_);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    (void)sched_setaffinity(0, sizeof(one), &one);
}

Ticks::~Ticks() {
    const itimerval none{};
    (void)setitimer(ITIMER_REAL, &none, nullptr);
    (void)signal(SIGALRM, SIG_DFL);
    (void)sched_setaffinity(0, sizeof(processors_), &processors_);
}

TracedProcess::TracedProcess(pid_t id, State state)
    : id_(id),
      state_(state),
      call_file_(OpenFile(id, "syscall")),
      stat_file_(OpenFile(id, "stat")) {
}

std::optional<pid_t> TracedProcess::TakeNewProcess() {
    return std::exchange(new_process_, std::nullopt);
}

bool TracedProcess::TakeLeftSession() {
    return std::exchange(has_left_session_, false);
}

void TracedProcess::Step() {
    const bool is_call = state_ == State::kAtCall;
    const bool may_wait = is_call && MayWait(id_, entry_);
    Resume(is_call ? PTRACE_SYSCALL : PTRACE_CONT);
    if (!std::exchange(awaits_new_program_, false)) {
        AwaitStop(may_wait);
    }
}

void TracedProcess::StepToNextCall() {
    entry_.number = -1;
    Resume(PTRACE_CONT);
    AwaitStop(false);
}

void TracedProcess::StepOverCall() {
    SkipCall(id_);
    result_ = 0;
    Step();
}

void TracedProcess::Resume(int request) {
    state_ = State::kWaiting;
    (void)ptrace(static_cast<__ptrace_request>(request), id_, nullptr,
                 static_cast<long>(std::exchange(signal_, 0)));
}

bool TracedProcess::TakeStatus(int flags) {
    int status = 0;
    const pid_t found = waitpid(id_, &status, __WALL | flags);
    if (found == -1 && errno == EINTR) {
        return false;
    }
    if (found == -1) {
        state_ = State::kEnded;
        return true;
    }
    if (found == 0) {
        return false;
    }
    HandleStatus(status);
    return true;
}

// The first file has a call only if the process has left its processor, so a call that is about to
// wait and then does not is not taken for one that waits. The second one shows also a process that
// was just woken and has no processor yet.
bool TracedProcess::IsRunning() const {
    return ReadStart(call_file_).starts_with("running") || StateLetter() == 'R';
}

char TracedProcess::StateLetter() const {
    const std::string text = ReadStart(stat_file_);
    const size_t end = text.rfind(") ");
    return end == std::string::npos || end + 2 >= text.size() ? 'X' : text[end + 2];
}

// Only an interruptible sleep is a wait for another process.
bool TracedProcess::IsAsleep() const {
    return !IsRunning() && StateLetter() == 'S';
}

// Looks at once at a process in a call that may wait, and at others with each tick.
void TracedProcess::AwaitStop(bool may_wait) {
    while (!TakeStatus(may_wait ? WNOHANG : 0)) {
        if (IsAsleep()) {
            (void)TakeStatus(WNOHANG);  // it has stopped since
            return;
        }
        (void)sched_yield();
    }
}

void TracedProcess::Look() {
    while (!TakeStatus(WNOHANG) && IsRunning()) {
        (void)sched_yield();
    }
    if (state_ == State::kWaiting) {
        (void)TakeStatus(WNOHANG);
    }
}

void TracedProcess::Interrupt(long result) {
    result_ = result;
    (void)syscall(SYS_tkill, id_, SIGSTOP);
    while (!TakeStatus(0)) {
    }
}

void TracedProcess::HandleStatus(int status) {
    if (!WIFSTOPPED(status)) {
        status_ = status;
        state_ = State::kEnded;
        return;
    }
    state_ = State::kReady;
    const int signal = WSTOPSIG(status);
    if (signal == kCallStop) {
        HandleReturn();
    } else if (status >> 16 != 0) {
        HandleEvent(status >> 16);
    } else if (signal != SIGSTOP) {
        signal_ = signal;
    }
}

void TracedProcess::HandleEvent(int event) {
    unsigned long message = 0;
    switch (event) {
        case PTRACE_EVENT_VFORK:
            awaits_new_program_ = true;
            [[fallthrough]];
        case PTRACE_EVENT_FORK:
        case PTRACE_EVENT_CLONE:
            (void)ptrace(PTRACE_GETEVENTMSG, id_, nullptr, &message);
            new_process_ = static_cast<pid_t>(message);
            break;
        case PTRACE_EVENT_SECCOMP: {
            __ptrace_syscall_info info{};
            if (ptrace(PTRACE_GET_SYSCALL_INFO, id_, sizeof(info), &info) == -1) {
                break;
            }
            entry_.number = static_cast<long>(info.seccomp.nr);
            std::copy(std::begin(info.seccomp.args), std::end(info.seccomp.args), entry_.arguments);
            state_ = State::kAtCall;
            break;
        }
        default:
            break;
    }
}

void TracedProcess::HandleReturn() {
    if (result_) {
        SetResult(id_, *result_);
        result_.reset();
    }
    has_left_session_ = has_left_session_ || entry_.number == SYS_setsid;
    entry_.number = -1;
}

}  // namespace schedules
