// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_probe.h - makes each intercepted call once from a shared library, in the compiler's
// spelling.
#ifndef TESTS_SUPPORT_CALL_PROBE_H_
#define TESTS_SUPPORT_CALL_PROBE_H_

#include <semaphore.h>
#include <sys/socket.h>
#include <sys/time.h>

// The probe is built several times, each with another prefix and other compiler settings, because
// _FORTIFY_SOURCE and 64-bit file offsets change the symbols that a call refers to.
#define DECLARE_PROBE(prefix)                                               \
    extern "C" {                                                            \
    int prefix##_open(const char* path, int flags);                         \
    int prefix##_open_mode(const char* path, int flags, unsigned mode);     \
    long prefix##_read(int fd, unsigned long size);                         \
    long prefix##_write(int fd, const char* text, unsigned long size);      \
    int prefix##_close(int fd);                                             \
    int prefix##_flock(int fd, int operation);                              \
    int prefix##_fchmod(int fd, unsigned mode);                             \
    int prefix##_socket(int domain, int type);                              \
    int prefix##_ioctl(int fd, unsigned long request, void* argument);      \
    int prefix##_nanosleep(long nanoseconds);                               \
    int prefix##_connect(int fd, const sockaddr* address, unsigned length); \
    int prefix##_bind(int fd, const sockaddr* address, unsigned length);    \
    long prefix##_sendto(int fd, const char* text, unsigned long size);     \
    long prefix##_recvfrom(int fd, unsigned long size);                     \
    int prefix##_select(int count, timeval* time_left);                     \
    int prefix##_unlink(const char* path);                                  \
    sem_t* prefix##_sem_open(const char* name);                             \
    int prefix##_sem_post(sem_t* sem);                                      \
    int prefix##_sem_close(sem_t* sem);                                     \
    int prefix##_sem_unlink(const char* name);                              \
    int prefix##_system(const char* command);                               \
    unsigned prefix##_sleep(unsigned seconds);                              \
    void prefix##_syslog(int priority, const char* text);                   \
    void prefix##_vsyslog(int priority, const char* format, ...);           \
    char* prefix##_allocate();                                              \
    }

DECLARE_PROBE(plain)
DECLARE_PROBE(large)
DECLARE_PROBE(fortified)
DECLARE_PROBE(fortified_large)

#undef DECLARE_PROBE

#endif  // TESTS_SUPPORT_CALL_PROBE_H_
