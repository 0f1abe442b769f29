// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bare_get.cpp - a minimal C++ program that gets an address from the library and prints it.
#include <iostream>

#include "velk.h"

int main() {
    const _velk_request request = {"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    if (execute_velk_command(&request, &response) != LIB_VELK_SUCCESS) {
        return 1;
    }
    std::cout << response.data << '\n';
    return 0;
}
