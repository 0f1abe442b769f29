// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_probe.cpp - makes each intercepted call once. Built with PROBE_NAME, the functions' prefix.
#include "support/call_probe.h"

#include <cstdarg>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#define JOIN_EXPANDED(prefix, call) prefix##_##call
#define JOIN(prefix, call) JOIN_EXPANDED(prefix, call)
#define PROBE(call) JOIN(PROBE_NAME, call)

// The library exports nothing else.
extern "C" {

[[gnu::visibility("default")]] int PROBE(open)(const char* path, int flags) {
    return open(path, flags);
}

[[gnu::visibility("default")]] int PROBE(open_mode)(const char* path, int flags, unsigned mode) {
    return open(path, flags, mode);
}

// _FORTIFY_SOURCE checks calls with a buffer of known size and a count of unknown size.
[[gnu::visibility("default")]] long PROBE(read)(int fd, unsigned long size) {
    char buffer[16];
    return read(fd, buffer, size);
}

[[gnu::visibility("default")]] long PROBE(write)(int fd, const char* text, unsigned long size) {
    return write(fd, text, size);
}

[[gnu::visibility("default")]] int PROBE(close)(int fd) {
    return close(fd);
}

[[gnu::visibility("default")]] int PROBE(flock)(int fd, int operation) {
    return flock(fd, operation);
}

[[gnu::visibility("default")]] int PROBE(fchmod)(int fd, unsigned mode) {
    return fchmod(fd, mode);
}

[[gnu::visibility("default")]] int PROBE(socket)(int domain, int type) {
    return socket(domain, type, 0);
}

[[gnu::visibility("default")]] int PROBE(ioctl)(int fd, unsigned long request, void* argument) {
    return ioctl(fd, request, argument);
}

[[gnu::visibility("default")]] int PROBE(nanosleep)(long nanoseconds) {
    const timespec pause{0, nanoseconds};
    return nanosleep(&pause, nullptr);
}

[[gnu::visibility("default")]] int PROBE(connect)(int fd, const sockaddr* address,
                                                  unsigned length) {
    return connect(fd, address, length);
}

[[gnu::visibility("default")]] int PROBE(bind)(int fd, const sockaddr* address, unsigned length) {
    return bind(fd, address, length);
}

[[gnu::visibility("default")]] long PROBE(sendto)(int fd, const char* text, unsigned long size) {
    return sendto(fd, text, size, MSG_DONTWAIT, nullptr, 0);
}

[[gnu::visibility("default")]] long PROBE(recvfrom)(int fd, unsigned long size) {
    char buffer[16];
    return recvfrom(fd, buffer, size, MSG_DONTWAIT, nullptr, nullptr);
}

[[gnu::visibility("default")]] int PROBE(select)(int count, timeval* time_left) {
    return select(count, nullptr, nullptr, nullptr, time_left);
}

[[gnu::visibility("default")]] int PROBE(unlink)(const char* path) {
    return unlink(path);
}

[[gnu::visibility("default")]] sem_t* PROBE(sem_open)(const char* name) {
    return sem_open(name, O_RDWR | O_CREAT, 0666, 0U);
}

[[gnu::visibility("default")]] int PROBE(sem_post)(sem_t* sem) {
    return sem_post(sem);
}

[[gnu::visibility("default")]] int PROBE(sem_close)(sem_t* sem) {
    return sem_close(sem);
}

[[gnu::visibility("default")]] int PROBE(sem_unlink)(const char* name) {
    return sem_unlink(name);
}

[[gnu::visibility("default")]] int PROBE(system)(const char* command) {
    return system(command);
}

[[gnu::visibility("default")]] unsigned PROBE(sleep)(unsigned seconds) {
    return sleep(seconds);
}

[[gnu::visibility("default")]] void PROBE(syslog)(int priority, const char* text) {
    syslog(priority, "probe %s", text);
}

[[gnu::visibility("default")]] void PROBE(vsyslog)(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

[[gnu::visibility("default")]] char* PROBE(allocate)() {
    return new char[100];
}

}  // extern "C"
