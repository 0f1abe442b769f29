// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c_loader_program.c - a C program that loads a library, makes its first get and prints the time of
 * both in nanoseconds. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "velk.h"

typedef int (*Execute)(const _velk_request*, _velk_request*);

static long long nanoseconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

int main(int argc, char** argv) {
    const _velk_request request = {"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    Execute execute = NULL;
    if (argc != 2) {
        return 2;
    }
    const long long start = nanoseconds();
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (library == NULL) {
        return 1;
    }
    void* const function = dlsym(library, "execute_velk_command");
    memcpy(&execute, &function, sizeof(execute)); /* ISO C converts no pointer to a function */
    const int result = execute(&request, &response);
    printf("%lld\n", nanoseconds() - start);
    return result == LIB_VELK_SUCCESS ? 0 : 1;
}
