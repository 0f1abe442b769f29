// libc_interposed.cpp - the executable's own definitions of the libc calls the library makes.
//
// Each call is defined in every spelling that compilers turn it into: the plain one, the one for
// 64-bit file offsets and the checked one of _FORTIFY_SOURCE.
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include "support/libc_recorder.h"

namespace {

using testkit::Call;
using testkit::CallView;
using testkit::LibcRecorder;
using testkit::Outcome;

// libc's own function behind ours.
template <typename Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Notes the call and answers it: from the script, or by `pass_through`.
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
    vsnprintf(line, sizeof(line), format, arguments);
    (void)LibcRecorder::Get().Take({Call::kSyslog, line, spelling, priority});
    errno = saved;
}

ssize_t Read(const char* spelling, int fd, void* buffer, size_t size) {
    return Answer({Call::kRead, std::to_string(fd), spelling}, [&] {
        static auto* real = Real<ssize_t (*)(int, void*, size_t)>("read");
        return real(fd, buffer, size);
    });
}

// The mode argument is there only when the flags say so.
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
    // A scripted failure closes the descriptor all the same, as the kernel does.
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

int ioctl(int fd, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return Answer({Call::kIoctl, std::to_string(fd), "ioctl", static_cast<int>(request)}, [&] {
        static auto* real = Real<int (*)(int, unsigned long, ...)>("ioctl");
        return real(fd, request, argument);
    });
}

int nanosleep(const timespec* pause, timespec* rest) {
    return Answer({Call::kNanosleep, std::to_string(pause->tv_nsec), "nanosleep"}, [&] {
        static auto* real = Real<int (*)(const timespec*, timespec*)>("nanosleep");
        return real(pause, rest);
    });
}

int system(const char* command) {
    return Answer({Call::kSystem, command == nullptr ? "" : command, "system"}, [&] {
        static auto* real = Real<int (*)(const char*)>("system");
        return real(command);
    });
}

unsigned sleep(unsigned seconds) {
    return Answer({Call::kSleep, std::to_string(seconds), "sleep"}, [] { return 0U; });
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
