// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// observed_functions.cpp - functions of libc that show the library's steps to an observer.
//
// The dynamic linker finds the definitions of the program first, so the library calls these. With
// the library inside velkctl, the linker puts __wrap_NAME in the place of each NAME, and NAME in
// the place of __real_NAME. Without an observer each of them calls the one of libc. Lines of the
// log are cut at 1,024 bytes, as the library cuts its own.
//
// The checked forms that _FORTIFY_SOURCE puts in the place of some of them have other names.
#undef _FORTIFY_SOURCE

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <syslog.h>
#include <unistd.h>

#include "velkctl/call/library_observer.h"

#ifdef VELKCTL_STATIC
extern "C" {
decltype(system) __real_system;
decltype(sleep) __real_sleep;
decltype(syslog) __real_syslog;
decltype(sendto) __real_sendto;
decltype(recvfrom) __real_recvfrom;
}
#define OBSERVED(name) __wrap_##name
#define REAL(name) (&__real_##name)
#else
#define OBSERVED(name) name
#define REAL(name) Real<decltype(name)>(#name)
#endif

namespace {

constexpr size_t kLineSize = 1024;  // as the library cuts its lines

#ifndef VELKCTL_STATIC
template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#endif

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

int OBSERVED(system)(const char* command) {
    static auto* const real = REAL(system);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    return observer == nullptr ? real(command) : observer->RunShellLine(command, real);
}

unsigned OBSERVED(sleep)(unsigned seconds) {
    static auto* const real = REAL(sleep);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    return observer == nullptr ? real(seconds) : observer->Wait(seconds, real);
}

void OBSERVED(syslog)(int priority, const char* format, ...) {
    static auto* const real = REAL(syslog);
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

ssize_t OBSERVED(sendto)(int socket, const void* bytes, size_t size, int flags, const sockaddr* to,
                         socklen_t length) {
    static auto* const real = REAL(sendto);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    if (observer != nullptr && observer->KeepsMessage({static_cast<const char*>(bytes), size})) {
        return static_cast<ssize_t>(size);
    }
    return real(socket, bytes, size, flags, to, length);
}

ssize_t OBSERVED(recvfrom)(int socket, void* bytes, size_t size, int flags, sockaddr* from,
                           socklen_t* length) {
    static auto* const real = REAL(recvfrom);
    const ssize_t count = real(socket, bytes, size, flags, from, length);
    velkctl::LibraryObserver* observer = velkctl::CurrentObserver();
    if (observer != nullptr && count > 0) {
        observer->ReadReply(bytes, static_cast<size_t>(count));
    }
    return count;
}

}  // extern "C"
#pragma GCC visibility pop
