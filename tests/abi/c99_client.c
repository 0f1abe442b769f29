// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* c99_client.c - a management program in plain C: the header, the layout, a call. */
#include <stdio.h>
#include <string.h>

#include "velk.h"

static int failures = 0;

static void check(const char* label, long expected, long actual) {
    if (expected != actual) {
        printf("%s: expected %ld, got %ld\n", label, expected, actual);
        failures++;
    }
}

static void check_layout(void) {
    check("size of the record", 536, (long)sizeof(_velk_request));
    check("offset of interface", 0, (long)offsetof(_velk_request, interface));
    check("offset of command_type", 16, (long)offsetof(_velk_request, command_type));
    check("offset of command_id", 20, (long)offsetof(_velk_request, command_id));
    check("offset of data", 24, (long)offsetof(_velk_request, data));
}

static void check_values(void) {
    check("VELK_GET", 1, VELK_GET);
    check("VELK_SET", 2, VELK_SET);
    check("VELK_RESTART", 3, VELK_RESTART);
    check("VELK_CMD_MAC_ADDRESS", 101, VELK_CMD_MAC_ADDRESS);
    check("VELK_CMD_IP_ADDRESS", 104, VELK_CMD_IP_ADDRESS);
    check("VELK_CMD_NETMASK", 105, VELK_CMD_NETMASK);
    check("VELK_CMD_GATEWAY", 106, VELK_CMD_GATEWAY);
    check("VELK_CMD_DNS", 108, VELK_CMD_DNS);
    check("VELK_CMD_LINK_SPEED", 201, VELK_CMD_LINK_SPEED);
    check("VELK_LINK_AUTO", 1, VELK_LINK_AUTO);
    check("VELK_LINK_100_FULL", 2, VELK_LINK_100_FULL);
    check("VELK_LINK_100_HALF", 3, VELK_LINK_100_HALF);
    check("VELK_LINK_10_FULL", 4, VELK_LINK_10_FULL);
    check("VELK_LINK_10_HALF", 5, VELK_LINK_10_HALF);
    check("LIB_VELK_SUCCESS", 0, LIB_VELK_SUCCESS);
    check("LIB_VELK_FAILURE", -1, LIB_VELK_FAILURE);
    check("LIB_VELK_LOCKED", -3, LIB_VELK_LOCKED);
    check("LIB_VELK_INVALID_PARAMETER", -4, LIB_VELK_INVALID_PARAMETER);
    check("LIB_VELK_NO_ADAPTER", -5, LIB_VELK_NO_ADAPTER);
    check("LIB_VELK_WIRED_LINKED", -6, LIB_VELK_WIRED_LINKED);
}

/* A get of an unknown id has no effect on the machine. */
static void check_call(void) {
    _velk_request request;
    _velk_request response;
    memset(&request, 0, sizeof(request));
    memset(&response, 0xEE, sizeof(response));
    strcpy(request.interface, VELK_WIRED_INTERFACE);
    request.command_type = VELK_GET;
    request.command_id = 399;
    check("unknown id", LIB_VELK_INVALID_PARAMETER, execute_velk_command(&request, &response));
    check("interface in the response", 0, strcmp(response.interface, "eth0"));
    check("type in the response", VELK_GET, (long)response.command_type);
    check("id in the response", 399, (long)response.command_id);
    check("first data byte", 0, response.data[0]);
    check("last data byte", 0, response.data[VELK_DATA_SIZE - 1]);
    check("null request", LIB_VELK_INVALID_PARAMETER, execute_velk_command(NULL, &response));
    check("null response", LIB_VELK_INVALID_PARAMETER, execute_velk_command(&request, NULL));
}

int main(void) {
    check_layout();
    check_values();
    check_call();
    return failures == 0 ? 0 : 1;
}
