// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c_reload.c - c_reload LIBRARY: a plugin host that loads, uses and unloads the library again and
 * again. Fails if that costs memory each time. */
#include <dlfcn.h>
#include <malloc.h>
#include <stdio.h>

#include "velk.h"

typedef int Command(const _velk_request* request, _velk_request* response);

/* Returns 0 if the library was loaded and refused a request without a command. */
static int use(const char* library) {
    const _velk_request request = {"", VELK_GET, 0, ""};
    _velk_request response;
    Command* command;
    void* const handle = dlopen(library, RTLD_NOW);
    if (handle == NULL) {
        printf("%s\n", dlerror());
        return 1;
    }
    *(void**)&command = dlsym(handle, "execute_velk_command");
    if (command == NULL || command(&request, &response) != LIB_VELK_INVALID_PARAMETER) {
        return 1;
    }
    return dlclose(handle);
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
