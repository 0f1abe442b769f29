// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// address.c - prints the address of eth0. The smallest program on libvelk.
#include <stdio.h>
#include <velk.h>

int main(void) {
    const _velk_request request = {VELK_WIRED_INTERFACE, VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    if (result != LIB_VELK_SUCCESS) {
        fprintf(stderr, "address: result %d\n", result);
        return 1;
    }
    printf("%.*s\n", VELK_DATA_SIZE, response.data);  // a text may fill the data without a NUL
    return 0;
}
