// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// observed_functions.cpp - functions of libc that show the library's steps to an observer.
//
// The dynamic linker finds the definitions of the program first, so the library calls these.
// Without an observer each of them calls the one of libc. Lines of the log are cut at 1,024 bytes,
// as the library cuts its own.
//
// The checked forms that _FORTIFY_SOURCE puts in the place of some of them have other names.
#undef _FORTIFY_SOURCE

#include <cstdarg>
#include <cstdio>
#include <string_view>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <syslog.h>

#include "velkctl/call/library_observer.h"

namespace {

constexpr size_t kLineSize = 1024;  // as the library cuts its lines

template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

int system(const char* command) {
    static auto* const real = Real<int(const char*)>("system");
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    return observer == nullptr ? real(command) : observer->RunShellLine(command, real);
}

unsigned sleep(unsigned seconds) {
    static auto* const real = Real<unsigned(unsigned)>("sleep");
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    return observer == nullptr ? real(seconds) : observer->Wait(seconds, real);
}

void syslog(int priority, const char* format, ...) {
    static auto* const real = Real<void(int, const char*, ...)>("syslog");
    va_list arguments;
    va_start(arguments, format);
    char line[kLineSize];
    (void)vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    if (observer == nullptr || observer->TakeLogLine(line)) {
        real(priority, "%s", line);
    }
}

ssize_t sendto(int socket, const void* bytes, size_t size, int flags, const sockaddr* to,
               socklen_t length) {
    static auto* const real =
        Real<ssize_t(int, const void*, size_t, int, const sockaddr*, socklen_t)>("sendto");
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    if (observer != nullptr && observer->KeepsMessage({static_cast<const char*>(bytes), size})) {
        return static_cast<ssize_t>(size);
    }
    return real(socket, bytes, size, flags, to, length);
}

ssize_t recvfrom(int socket, void* bytes, size_t size, int flags, sockaddr* from,
                 socklen_t* length) {
    static auto* const real =
        Real<ssize_t(int, void*, size_t, int, sockaddr*, socklen_t*)>("recvfrom");
    const ssize_t count = real(socket, bytes, size, flags, from, length);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    if (observer != nullptr && count > 0) {
        observer->ReadReply(bytes, static_cast<size_t>(count));
    }
    return count;
}

}  // extern "C"
#pragma GCC visibility pop
