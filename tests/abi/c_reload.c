// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c_reload.c - c_reload LIBRARY: a plugin host that loads, uses and unloads the library again and
 * again. Fails if that costs memory each time, or if a first get without memory ends otherwise than
 * with an error. Defines malloc(3). */
#include <dlfcn.h>
#include <malloc.h>
#include <stdio.h>

#include "velk.h"

void* __libc_malloc(size_t size);
void* malloc(size_t size);

static int has_memory = 1;

void* malloc(size_t size) {
    return has_memory ? __libc_malloc(size) : NULL;
}

typedef int Command(const _velk_request* request, _velk_request* response);

/* Returns 0 if the library was loaded and its first get, without memory, has failed. */
static int use(const char* library) {
    const _velk_request request = {"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    int result;
    Command* command;
    void* const handle = dlopen(library, RTLD_NOW);
    if (handle == NULL) {
        printf("%s\n", dlerror());
        return 1;
    }
    *(void**)&command = dlsym(handle, "execute_velk_command");
    if (command == NULL) {
        return 1;
    }
    has_memory = 0;
    result = command(&request, &response);
    has_memory = 1;
    return result == LIB_VELK_FAILURE ? dlclose(handle) : 1;
}

int main(int count, char** arguments) {
    enum { kTimes = 20, kMost = 32 * 1024 };
    size_t before;
    int i;
    if (count != 2 || use(arguments[1]) != 0) {
        return 1;
    }
    before = mallinfo2().uordblks;
    for (i = 0; i < kTimes; ++i) {
        if (use(arguments[1]) != 0) {
            return 1;
        }
    }
    printf("%zu bytes at first, %zu after %d times\n", before, mallinfo2().uordblks, i);
    return mallinfo2().uordblks - before > kMost;
}
