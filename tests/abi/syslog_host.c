// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* syslog_host.c - a host that defines only syslog(3) and prints each line of the log. */
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <velk.h>

__attribute__((visibility("default"))) void syslog(int priority, const char* format, ...) {
    va_list arguments;
    printf("%d ", priority);
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    printf("\n");
}

int main(void) {
    _velk_request request;
    _velk_request response;
    memset(&request, 0, sizeof(request));
    request.command_type = 4;
    (void)execute_velk_command(&request, &response);
    (void)execute_velk_command(NULL, &response);
    strcpy(request.interface, "eth2");
    request.command_type = VELK_GET;
    request.command_id = VELK_CMD_IP_ADDRESS;
    (void)execute_velk_command(&request, &response);
    return 0;
}
