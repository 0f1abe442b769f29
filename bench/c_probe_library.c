// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c_probe_library.c - a minimal C library that answers the loader's get. */
#include <fcntl.h>
#include <stddef.h>
#include <string.h>
#include <unistd.h>

#include "velk.h"

/* Copies the address of eth0 in the text, or returns 0. */
static int copy_address(const char* text, char* address) {
    const char* const stanza = strstr(text, "iface eth0 inet ");
    const char* const word = stanza == NULL ? NULL : strstr(stanza, "address ");
    if (word == NULL) {
        return 0;
    }
    const char* const value = word + strlen("address ");
    const size_t length = strcspn(value, "\n");
    memcpy(address, value, length);
    address[length] = '\0';
    return 1;
}

int execute_velk_command(const _velk_request* request, _velk_request* response) {
    char text[4096];
    (void)request;
    memset(response, 0, sizeof(*response));
    const int fd = open("/etc/network/interfaces", O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return LIB_VELK_FAILURE;
    }
    const ssize_t count = read(fd, text, sizeof(text) - 1);
    close(fd);
    text[count > 0 ? count : 0] = '\0';
    return copy_address(text, response->data) ? LIB_VELK_SUCCESS : LIB_VELK_FAILURE;
}
