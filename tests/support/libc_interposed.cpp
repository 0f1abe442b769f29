// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// libc_interposed.cpp - the executable's own definitions of the libc calls the library makes.
//
// Each call is defined in every spelling that compilers turn it into: the plain one, the one for
// 64-bit file offsets, the one for 64-bit times and the checked one of _FORTIFY_SOURCE.
//
// With these, the headers would give the plain functions other names.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include "support/allocations.h"
#include "support/libc_recorder.h"

namespace {

using testkit::Call;
using testkit::CallView;
using testkit::LibcRecorder;
using testkit::Outcome;

// Returns libc's own function, which ours replaces.
template <typename Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Records the call and returns its outcome, from the script or from `pass_through`.
template <typename PassThrough>
auto Answer(CallView call, PassThrough pass_through) -> decltype(pass_through()) {
    const int saved = errno;
    const Outcome outcome = LibcRecorder::Get().Take(call);
    errno = saved;
    if (outcome.pass) {
        return pass_through();
    }
    if (outcome.error != 0) {
        errno = outcome.error;
    }
    return static_cast<decltype(pass_through())>(outcome.result);
}

int Open(const char* spelling, const char* path, int flags, mode_t mode) {
    return Answer({Call::kOpen, path, spelling, flags}, [&] {
        static auto* real = Real<int (*)(const char*, int, ...)>("open");
        return real(LibcRecorder::Get().Target(path), flags, mode);
    });
}

void Syslog(const char* spelling, int priority, const char* format, va_list arguments) {
    char line[1024];
    const int saved = errno;
    (void)vsnprintf(line, sizeof(line), format, arguments);
    (void)LibcRecorder::Get().Take({Call::kSyslog, line, spelling, priority});
    errno = saved;
}

ssize_t Read(const char* spelling, int fd, void* buffer, size_t size) {
    return Answer({Call::kRead, std::to_string(fd), spelling}, [&] {
        static auto* real = Real<ssize_t (*)(int, void*, size_t)>("read");
        return real(fd, buffer, size);
    });
}

ssize_t Recvfrom(const char* spelling, int fd, void* buffer, size_t size, int flags,
                 sockaddr* address, socklen_t* length) {
    return Answer({Call::kRecvfrom, std::to_string(size), spelling, flags}, [&] {
        static auto* real =
            Real<ssize_t (*)(int, void*, size_t, int, sockaddr*, socklen_t*)>("recvfrom");
        return real(fd, buffer, size, flags, address, length);
    });
}

const char* PathOf(const sockaddr* address) {
    return address->sa_family == AF_UNIX ? reinterpret_cast<const sockaddr_un*>(address)->sun_path
                                         : "";
}

#if __TIMESIZE == 32
// The times of a 32-bit machine's calls with _TIME_BITS=64, as in its C library.
struct LongTimeval {
    int64_t tv_sec;
    int64_t tv_usec;
};
struct LongTimespec {
    int64_t tv_sec;
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    int32_t padding;
#endif
    int32_t tv_nsec;
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    int32_t padding;
#endif
};
#endif

int Ioctl(int fd, unsigned long request, void* argument) {
    return Answer({Call::kIoctl, std::to_string(fd), "ioctl", static_cast<int>(request)}, [&] {
        static auto* real = Real<int (*)(int, unsigned long, ...)>("ioctl");
        return real(fd, request, argument);
    });
}

// A fake daemon answers at once. Without an answer, a test does not wait for the minute of the
// library: the first time it waits some seconds, as the machine may be busy, and then hardly at
// all.
constexpr int kLongestSelect = 8;     // seconds
constexpr int kLaterSelect = 50'000;  // microseconds

template <typename Timeval>
int SelectInSeconds(int (*real)(int, fd_set*, fd_set*, fd_set*, Timeval*), int count,
                    fd_set* reading, fd_set* writing, fd_set* failing) {
    static std::atomic<bool> was_in_vain = false;
    Timeval longest{};
    longest.tv_sec = was_in_vain ? 0 : kLongestSelect;
    longest.tv_usec = was_in_vain ? kLaterSelect : 0;
    const int ready = real(count, reading, writing, failing, &longest);
    was_in_vain = was_in_vain || ready == 0;
    return ready;
}

template <typename Timeval>
int Select(const char* spelling, int count, fd_set* reading, fd_set* writing, fd_set* failing,
           Timeval* time_left) {
    std::string seconds;
    if (time_left != nullptr) {
        seconds = std::to_string(time_left->tv_sec) + "." + std::to_string(time_left->tv_usec);
    }
    return Answer({Call::kSelect, seconds, "select", count}, [&] {
        static auto* real = Real<int (*)(int, fd_set*, fd_set*, fd_set*, Timeval*)>(spelling);
        if (LibcRecorder::Get().never_waits()) {
            Timeval none{};
            return real(count, reading, writing, failing, &none);
        }
        if (time_left != nullptr && time_left->tv_sec >= kLongestSelect) {
            return SelectInSeconds(real, count, reading, writing, failing);
        }
        return real(count, reading, writing, failing, time_left);
    });
}

template <typename Timespec>
int Nanosleep(const char* spelling, const Timespec* pause, Timespec* rest) {
    return Answer({Call::kNanosleep, std::to_string(pause->tv_nsec), "nanosleep"}, [&] {
        static auto* real = Real<int (*)(const Timespec*, Timespec*)>(spelling);
        return real(pause, rest);
    });
}

template <typename Timespec>
int ClockNanosleep(const char* spelling, clockid_t clock, int flags, const Timespec* time,
                   Timespec* rest) {
    return Answer({Call::kClockNanosleep, "", "clock_nanosleep", flags}, [&] {
        static auto* real = Real<int (*)(clockid_t, int, const Timespec*, Timespec*)>(spelling);
        return real(clock, flags, time, rest);
    });
}

// The mode argument exists only with some flags.
bool HasMode(int flags) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0;
}

}  // namespace

// The dynamic linker must find them in the executable.
#pragma GCC visibility push(default)
extern "C" {

#define INTERPOSE_OPEN(name)                     \
    int name(const char* path, int flags, ...) { \
        mode_t mode = 0;                         \
        if (HasMode(flags)) {                    \
            va_list arguments;                   \
            va_start(arguments, flags);          \
            mode = va_arg(arguments, mode_t);    \
            va_end(arguments);                   \
        }                                        \
        return Open(#name, path, flags, mode);   \
    }
INTERPOSE_OPEN(open)
INTERPOSE_OPEN(open64)
#undef INTERPOSE_OPEN

int __open_2(const char* path, int flags) {
    return Open("__open_2", path, flags, 0);
}

int __open64_2(const char* path, int flags) {
    return Open("__open64_2", path, flags, 0);
}

ssize_t read(int fd, void* buffer, size_t size) {
    return Read("read", fd, buffer, size);
}

ssize_t __read_chk(int fd, void* buffer, size_t size, size_t /*room*/) {
    return Read("__read_chk", fd, buffer, size);
}

ssize_t write(int fd, const void* buffer, size_t size) {
    const std::string_view text(static_cast<const char*>(buffer), size);
    return Answer({Call::kWrite, text, "write", fd}, [&] {
        static auto* real = Real<ssize_t (*)(int, const void*, size_t)>("write");
        return real(fd, buffer, size);
    });
}

int close(int fd) {
    // A scripted failure closes the descriptor nevertheless, as the kernel does.
    static auto* real = Real<int (*)(int)>("close");
    const int result = real(fd);
    return Answer({Call::kClose, std::to_string(fd), "close"}, [&] { return result; });
}

int flock(int fd, int operation) noexcept {
    return Answer({Call::kFlock, std::to_string(fd), "flock", operation}, [&] {
        static auto* real = Real<int (*)(int, int)>("flock");
        return real(fd, operation);
    });
}

int fchmod(int fd, mode_t mode) noexcept {
    return Answer({Call::kFchmod, std::to_string(fd), "fchmod", static_cast<int>(mode)}, [&] {
        static auto* real = Real<int (*)(int, mode_t)>("fchmod");
        return real(fd, mode);
    });
}

int socket(int domain, int type, int protocol) noexcept {
    return Answer({Call::kSocket, std::to_string(domain), "socket", type}, [&] {
        static auto* real = Real<int (*)(int, int, int)>("socket");
        return real(domain, type, protocol);
    });
}

#define INTERPOSE_IOCTL(name)                               \
    int name(int fd, unsigned long request, ...) noexcept { \
        va_list arguments;                                  \
        va_start(arguments, request);                       \
        void* argument = va_arg(arguments, void*);          \
        va_end(arguments);                                  \
        return Ioctl(fd, request, argument);                \
    }
INTERPOSE_IOCTL(ioctl)
#if __TIMESIZE == 32
INTERPOSE_IOCTL(__ioctl_time64)
#endif
#undef INTERPOSE_IOCTL

int connect(int fd, const sockaddr* address, socklen_t length) {
    return Answer({Call::kConnect, PathOf(address), "connect", static_cast<int>(length)}, [&] {
        static auto* real = Real<int (*)(int, const sockaddr*, socklen_t)>("connect");
        return real(fd, address, length);
    });
}

int bind(int fd, const sockaddr* address, socklen_t length) noexcept {
    return Answer({Call::kBind, PathOf(address), "bind", static_cast<int>(length)}, [&] {
        static auto* real = Real<int (*)(int, const sockaddr*, socklen_t)>("bind");
        return real(fd, address, length);
    });
}

ssize_t sendto(int fd, const void* data, size_t size, int flags, const sockaddr* address,
               socklen_t length) {
    const std::string_view text(static_cast<const char*>(data), size);
    return Answer({Call::kSendto, text, "sendto", flags}, [&] {
        static auto* real =
            Real<ssize_t (*)(int, const void*, size_t, int, const sockaddr*, socklen_t)>("sendto");
        return real(fd, data, size, flags, address, length);
    });
}

ssize_t recvfrom(int fd, void* buffer, size_t size, int flags, sockaddr* address,
                 socklen_t* length) {
    return Recvfrom("recvfrom", fd, buffer, size, flags, address, length);
}

ssize_t __recvfrom_chk(int fd, void* buffer, size_t size, size_t /*room*/, int flags,
                       sockaddr* address, socklen_t* length) {
    return Recvfrom("__recvfrom_chk", fd, buffer, size, flags, address, length);
}

int select(int count, fd_set* reading, fd_set* writing, fd_set* failing, timeval* time_left) {
    return Select("select", count, reading, writing, failing, time_left);
}

int unlink(const char* path) noexcept {
    return Answer({Call::kUnlink, path, "unlink"}, [&] {
        static auto* real = Real<int (*)(const char*)>("unlink");
        return real(path);
    });
}

sem_t* sem_open(const char* name, int flags, ...) noexcept {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    const unsigned value = va_arg(arguments, unsigned);
    va_end(arguments);
    const testkit::UncountedAllocations ours;
    const std::string text =
        std::string(name) + " " + std::to_string(mode) + " " + std::to_string(value);
    sem_t* sem = SEM_FAILED;
    const int answer = Answer({Call::kSemOpen, text, "sem_open", flags}, [&] {
        static auto* real = Real<sem_t* (*)(const char*, int, ...)>("sem_open");
        sem = real(name, flags, mode, value);
        return sem == SEM_FAILED ? -1 : 0;
    });
    return answer == -1 ? SEM_FAILED : sem;
}

int sem_post(sem_t* sem) noexcept {
    return Answer({Call::kSemPost, "", "sem_post"}, [&] {
        static auto* real = Real<int (*)(sem_t*)>("sem_post");
        return real(sem);
    });
}

int sem_close(sem_t* sem) noexcept {
    // A planned failure closes the handle nevertheless: no other code could close it later.
    static auto* real = Real<int (*)(sem_t*)>("sem_close");
    const int result = real(sem);
    return Answer({Call::kSemClose, "", "sem_close"}, [&] { return result; });
}

int sem_unlink(const char* name) noexcept {
    return Answer({Call::kSemUnlink, name, "sem_unlink"}, [&] {
        static auto* real = Real<int (*)(const char*)>("sem_unlink");
        return real(name);
    });
}

int nanosleep(const timespec* pause, timespec* rest) {
    return Nanosleep("nanosleep", pause, rest);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest) {
    return ClockNanosleep("clock_nanosleep", clock, flags, time, rest);
}

#if __TIMESIZE == 32
int __select64(int count, fd_set* reading, fd_set* writing, fd_set* failing,
               LongTimeval* time_left) {
    return Select("__select64", count, reading, writing, failing, time_left);
}

int __nanosleep64(const LongTimespec* pause, LongTimespec* rest) {
    return Nanosleep("__nanosleep64", pause, rest);
}

int __clock_nanosleep_time64(clockid_t clock, int flags, const LongTimespec* time,
                             LongTimespec* rest) {
    return ClockNanosleep("__clock_nanosleep_time64", clock, flags, time, rest);
}
#endif

int system(const char* command) {
    return Answer({Call::kSystem, command == nullptr ? "" : command, "system"}, [&] {
        static auto* real = Real<int (*)(const char*)>("system");
        return real(command);
    });
}

unsigned sleep(unsigned seconds) {
    return Answer({Call::kSleep, std::to_string(seconds), "sleep"}, [&] {
        static auto* real = Real<unsigned (*)(unsigned)>("sleep");
        return LibcRecorder::Get().sleeps_for_real() ? real(seconds) : 0U;
    });
}

void vsyslog(int priority, const char* format, va_list arguments) {
    Syslog("vsyslog", priority, format, arguments);
}

void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list arguments) {
    Syslog("__vsyslog_chk", priority, format, arguments);
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Syslog("syslog", priority, format, arguments);
    va_end(arguments);
}

void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Syslog("__syslog_chk", priority, format, arguments);
    va_end(arguments);
}

}  // extern "C"
#pragma GCC visibility pop
