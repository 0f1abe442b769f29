// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tracer.cpp - follows a process and all it starts with ptrace(2).
#include "fault/kit/tracer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <iterator>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"

namespace fault {
namespace {

constexpr int kSystemCallStop = SIGTRAP | 0x80;  // as PTRACE_O_TRACESYSGOOD marks it
constexpr long kOptionsOfOne = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
constexpr long kOptions =
    kOptionsOfOne | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE;

// Calls that concern the calling process alone: memory, signals, queries.
constexpr std::array kPrivateCalls{
    SYS_brk,
    SYS_close,
    SYS_fadvise64,
    SYS_fcntl,
    SYS_fstat,
    SYS_futex,
    SYS_getcwd,
    SYS_getdents64,
    SYS_getegid,
    SYS_geteuid,
    SYS_getgid,
    SYS_getpid,
    SYS_getppid,
    SYS_getrandom,
    SYS_gettid,
    SYS_getuid,
    SYS_lseek,
    SYS_madvise,  // the sanitizers' allocator gives memory back after some seconds
    SYS_mmap,
    SYS_mprotect,
    SYS_mremap,
    SYS_munmap,
    SYS_newfstatat,
    SYS_pread64,
    SYS_prlimit64,
    SYS_read,
    SYS_rseq,
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sched_yield,
    SYS_set_robust_list,
    SYS_set_tid_address,
    SYS_sigaltstack,
    SYS_statfs,
    SYS_uname,
    SYS_wait4,
#ifdef SYS_arch_prctl
    SYS_access,
    SYS_arch_prctl,
    SYS_dup2,
    SYS_poll,
    SYS_readlink,
#endif
};

[[noreturn]] void Fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

bool CanChangeTheDevice(const __ptrace_syscall_info& info) {
    const auto call = static_cast<long>(info.entry.nr);
    if (call == SYS_openat) {
        return (info.entry.args[2] & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
    }
    return std::ranges::find(kPrivateCalls, call) == std::end(kPrivateCalls);
}

class Follower {
  public:
    Follower(pid_t first, size_t cut_at, Traced traced)
        : first_(first), cut_at_(cut_at), processes_{first} {
        const long options = traced == Traced::kAll ? kOptions : kOptionsOfOne;
        if (ptrace(PTRACE_SETOPTIONS, first, nullptr, options) == -1) {
            Fail("PTRACE_SETOPTIONS");
        }
        Continue(first, 0);
    }

    // Waits until no process is left. A process that was being forked while the others were ended
    // is not yet known, and would disturb the next run.
    TracedRun Follow() {
        for (;;) {
            int status = 0;
            const pid_t pid = waitpid(-1, &status, __WALL);
            if (pid == -1 && errno == ECHILD) {
                return run_;
            }
            if (pid == -1) {
                Fail("waitpid");
            }
            Handle(pid, status);
        }
    }

  private:
    void Handle(pid_t pid, int status) {
        if (!WIFSTOPPED(status)) {
            processes_.erase(pid);
            if (pid == first_ && WIFEXITED(status)) {
                run_.result = static_cast<int8_t>(WEXITSTATUS(status));
            }
            return;
        }
        const bool is_new = processes_.insert(pid).second;
        if (run_.was_cut) {
            kill(pid, SIGKILL);  // it was forked while the others were ended
            return;
        }
        const int signal = WSTOPSIG(status);
        if (signal == kSystemCallStop) {
            HandleCall(pid);
            return;
        }
        const bool is_ours = status >> 16 != 0 || (is_new && signal == SIGSTOP);
        Continue(pid, is_ours || signal == SIGSTOP ? 0 : signal);
    }

    void HandleCall(pid_t pid) {
        __ptrace_syscall_info info{};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof(info), &info) == -1) {
            return;  // it has ended
        }
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            run_.calls_that_change.push_back(CanChangeTheDevice(info));
            if (run_.calls_that_change.size() == cut_at_) {
                Cut();
                return;
            }
        }
        Continue(pid, 0);
    }

    void Cut() {
        run_.was_cut = true;
        for (const pid_t process : processes_) {
            run_.programs.insert(testkit::ReadFile("/proc/" + std::to_string(process) + "/comm"));
        }
        for (const pid_t process : processes_) {
            kill(process, SIGKILL);
        }
    }

    static void Continue(pid_t pid, int signal) {
        (void)ptrace(PTRACE_SYSCALL, pid, nullptr, static_cast<long>(signal));
    }

    const pid_t first_;
    const size_t cut_at_;
    std::set<pid_t> processes_;
    TracedRun run_;
};

}  // namespace

TracedRun RunTraced(const std::function<int()>& work, size_t cut_at, Traced traced) {
    const pid_t child = fork();
    if (child == -1) {
        Fail("fork");
    }
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == -1) {
            _exit(1);
        }
        (void)raise(SIGSTOP);
        _exit(work());
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
        Fail("PTRACE_TRACEME");
    }
    return Follower(child, cut_at, traced).Follow();
}

}  // namespace fault
