// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c_host.c - a C program without a C++ runtime, on a device: loads no C++ library, gets an address,
 * and gets an error instead of an exception if memory runs out. Defines syslog(3) and malloc(3). */
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "velk.h"

void* __libc_malloc(size_t size);
void syslog(int priority, const char* format, ...);
void* malloc(size_t size);

static int has_memory = 1;

void* malloc(size_t size) {
    return has_memory ? __libc_malloc(size) : NULL;
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printf("%d ", priority);
    vprintf(format, arguments);
    printf("\n");
    va_end(arguments);
}

/* Prints the names of the C++ libraries in this process. */
static void print_runtimes(void) {
    char line[4096];
    FILE* const maps = fopen("/proc/self/maps", "r");
    while (maps != NULL && fgets(line, sizeof(line), maps) != NULL) {
        if (strstr(line, "libstdc++") != NULL || strstr(line, "libgcc_s") != NULL) {
            printf("%s", line);
        }
    }
    if (maps == NULL || fclose(maps) != 0) {
        printf("no list of libraries\n");
    }
}

static void get_address(void) {
    const _velk_request request = {"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    printf("%d '%s'\n", result, response.data);
}

int main(void) {
    static char buffer[4096]; /* printf() needs no memory then */
    (void)setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));
    print_runtimes();
    get_address();
    has_memory = 0;
    get_address();
    has_memory = 1;
    get_address();
    return 0;
}
