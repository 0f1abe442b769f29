// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tracer.cpp - follows a process and all it starts with ptrace(2).
#include "fault/kit/tracer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
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

// Returns the moment after one more call.
Moment NextMoment(const Moment& moment, bool is_change) {
    return is_change ? Moment{moment.changes + 1} : Moment{moment.changes, moment.calls + 1};
}

// ---- Writes ------------------------------------------------------------------------------------

struct WriteCall {
    long call;
    const char* name;
    int descriptor = -1;  // the argument that is a file to write
    int path = -1;        // the argument that is a path
};

constexpr std::array kWriteCalls{
    WriteCall{SYS_write, "write", 0},          WriteCall{SYS_pwrite64, "write", 0},
    WriteCall{SYS_writev, "write", 0},         WriteCall{SYS_sendfile, "write", 0},
    WriteCall{SYS_splice, "write", 2},         WriteCall{SYS_copy_file_range, "write", 2},
    WriteCall{SYS_fallocate, "fallocate", 0},  WriteCall{SYS_ftruncate, "ftruncate", 0},
    WriteCall{SYS_fsync, "fsync", 0},          WriteCall{SYS_fdatasync, "fsync", 0},
    WriteCall{SYS_mkdirat, "mkdir", -1, 1},    WriteCall{SYS_renameat, "rename", -1, 3},
    WriteCall{SYS_renameat2, "rename", -1, 3}, WriteCall{SYS_unlinkat, "unlink", -1, 1},
#ifdef SYS_arch_prctl
    WriteCall{SYS_mkdir, "mkdir", -1, 0},      WriteCall{SYS_rename, "rename", -1, 1},
    WriteCall{SYS_unlink, "unlink", -1, 0},
#endif
};

// The failures of each: a full disk, a full quota, a disk that became read-only, a broken one. An
// open file can be written to a disk that is being made read-only.
const std::map<std::string, std::set<int>, std::less<>> kFailures{
    {"write", {ENOSPC, EDQUOT, EIO}},
    {"fallocate", {ENOSPC, EDQUOT, EIO}},
    {"ftruncate", {EIO}},
    {"fsync", {ENOSPC, EDQUOT, EIO}},
    {"mkdir", {ENOSPC, EDQUOT, EROFS}},
    {"rename", {ENOSPC, EDQUOT, EROFS}},
    {"create", {ENOSPC, EDQUOT, EROFS}},
    {"open", {EROFS}},
    {"unlink", {EROFS}},
};

std::string ReadPath(pid_t pid, uint64_t address) {
    std::ifstream memory("/proc/" + std::to_string(pid) + "/mem", std::ios::binary);
    std::string path;
    memory.seekg(static_cast<std::streamoff>(address));
    (void)std::getline(memory, path, '\0');
    return path;
}

// Returns the file of a descriptor; empty for a pipe, a socket or a file in memory.
std::string PathOf(pid_t pid, uint64_t descriptor) {
    const std::string link =
        "/proc/" + std::to_string(pid) + "/fd/" + std::to_string(static_cast<int>(descriptor));
    std::error_code ignored;
    return std::filesystem::read_symlink(link, ignored);
}

// The kernel's own files, and a semaphore or a result in memory, are on no disk.
bool IsOnDisk(const std::string& path) {
    constexpr std::array kElsewhere{"/dev/", "/proc/", "/sys/", "/memfd:"};
    const auto begins = [&](const char* start) { return path.starts_with(start); };
    return path.starts_with('/') && std::ranges::none_of(kElsewhere, begins);
}

// Returns "create" or "open" and the path; empty if it opens no file to write.
std::string OpenToWrite(pid_t pid, const std::string& path, uint64_t flags) {
    if ((flags & (O_WRONLY | O_RDWR)) == 0 || !IsOnDisk(path)) {
        return "";
    }
    const std::string seen = "/proc/" + std::to_string(pid) + "/root" + path;
    const bool is_new = (flags & O_TMPFILE) == O_TMPFILE ||
                        ((flags & O_CREAT) != 0 && access(seen.c_str(), F_OK) != 0);
    return (is_new ? "create " : "open ") + path;
}

// Returns the write that a process is about to make: "write PATH"; empty if it makes none.
std::string WriteOf(pid_t pid, const __ptrace_syscall_info& info) {
    const auto call = static_cast<long>(info.entry.nr);
    if (call == SYS_openat) {
        return OpenToWrite(pid, ReadPath(pid, info.entry.args[1]), info.entry.args[2]);
    }
    const auto row = std::ranges::find(kWriteCalls, call, &WriteCall::call);
    if (row == kWriteCalls.end()) {
        return "";
    }
    const std::string path = row->path == -1 ? PathOf(pid, info.entry.args[row->descriptor])
                                             : ReadPath(pid, info.entry.args[row->path]);
    return IsOnDisk(path) ? std::string(row->name) + " " + path : "";
}

// Has the kernel skip the call that the process is about to make.
void SkipCall([[maybe_unused]] pid_t pid) {
#ifdef __x86_64__
    (void)ptrace(PTRACE_POKEUSER, pid, offsetof(user, regs.orig_rax), -1L);
#endif
}

void SetResult([[maybe_unused]] pid_t pid, [[maybe_unused]] long result) {
#ifdef __x86_64__
    (void)ptrace(PTRACE_POKEUSER, pid, offsetof(user, regs.rax), result);
#endif
}

// ---- The processes -----------------------------------------------------------------------------

// The trouble that the processes meet.
struct Interruption {
    std::optional<Moment> at{};
    std::function<void()> act{};
    WriteFault fault{};
    CallWatcher watcher{};
    Traced traced = Traced::kAll;
};

class Follower {
  public:
    // Without `act`, the processes are killed at that call.
    Follower(pid_t first, const Interruption& interruption)
        : first_(first),
          at_(interruption.at),
          act_(interruption.act),
          fault_(interruption.fault),
          watcher_(interruption.watcher),
          processes_{first} {
        const long options = interruption.traced == Traced::kAll ? kOptions : kOptionsOfOne;
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
            const bool is_change = CanChangeTheDevice(info);
            if (IsAtMoment(is_change) && Interrupt()) {
                return;
            }
            CountCall(is_change);
            entered_[pid] = info;
            NoteWrite(pid, WriteOf(pid, info));
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && failing_.erase(pid) != 0) {
            SetResult(pid, -fault_.error);
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && watcher_) {
            Watch(pid, info.exit.is_error != 0);
        }
        Continue(pid, 0);
    }

    // True once: right before the call of the moment, or before the change that comes earlier.
    bool IsAtMoment(bool is_change) {
        if (!at_ || at_->changes != now_.changes || (now_.calls < at_->calls && !is_change)) {
            return false;
        }
        at_.reset();
        return true;
    }

    void CountCall(bool is_change) {
        run_.calls_that_change.push_back(is_change);
        now_ = NextMoment(now_, is_change);
    }

    void Watch(pid_t pid, bool has_failed) {
        const auto entered = entered_.find(pid);
        if (entered == entered_.end() || !CanChangeTheDevice(entered->second)) {
            return;
        }
        const auto& entry = entered->second.entry;
        watcher_({pid, static_cast<long>(entry.nr), entry.args[0], has_failed});
    }

    // Returns true if the processes were killed.
    bool Interrupt() {
        if (act_) {
            act_();
            return false;
        }
        Cut();
        return true;
    }

    void NoteWrite(pid_t pid, const std::string& write) {
        if (write.empty()) {
            return;
        }
        run_.writes.push_back(write);
        const size_t number = run_.writes.size();
        const bool is_meant =
            number == fault_.number || (fault_.all_later && number > fault_.number);
        if (fault_.number != 0 && is_meant && CanFailWith(write, fault_.error)) {
            SkipCall(pid);
            failing_.insert(pid);
            run_.has_fault_struck = true;
        }
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
    std::optional<Moment> at_;  // none: it has passed, or is not wanted
    Moment now_{};
    const std::function<void()> act_;
    const WriteFault fault_;
    const CallWatcher watcher_;
    std::set<pid_t> processes_;
    std::map<pid_t, __ptrace_syscall_info> entered_;  // the last call that each has begun
    std::set<pid_t> failing_;                         // those in a call that fails
    TracedRun run_;
};

TracedRun Run(const std::function<int()>& work, const Interruption& interruption) {
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
    return Follower(child, interruption).Follow();
}

}  // namespace

std::vector<Moment> TracedRun::Moments() const {
    std::vector<Moment> moments;
    Moment moment{};
    for (const bool is_change : calls_that_change) {
        moments.push_back(moment);
        moment = NextMoment(moment, is_change);
    }
    return moments;
}

std::vector<Moment> TracedRun::MomentsThatDiffer() const {
    std::vector<Moment> moments = Moments();
    std::erase_if(moments, [](const Moment& moment) { return moment.calls > 0; });
    return moments;
}

TracedRun RunTraced(const std::function<int()>& work, std::optional<Moment> cut_at, Traced traced) {
    return Run(work, {.at = cut_at, .traced = traced});
}

TracedRun RunWatched(const std::function<int()>& work, const CallWatcher& watcher) {
    return Run(work, {.watcher = watcher});
}

TracedRun RunFailing(const std::function<int()>& work, const WriteFault& fault, Traced traced) {
    return Run(work, {.fault = fault, .traced = traced});
}

std::string TextOf(const Moment& moment) {
    return "after " + std::to_string(moment.changes) + " changes and " +
           std::to_string(moment.calls) + " other calls";
}

bool CanFailWrites() {
#ifdef __x86_64__
    return true;
#else
    return false;
#endif
}

bool CanFailWith(const std::string& write, int error) {
    return kFailures.find(write.substr(0, write.find(' ')))->second.contains(error);
}

TracedRun RunTracedBeside(const std::function<int()>& work, std::optional<Moment> at,
                          const std::function<void()>& act) {
    return Run(work, {.at = at, .act = act});
}

}  // namespace fault
