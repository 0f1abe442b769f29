// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - calls the library by its C function and by one of its C++ functions.
#include <cstdio>
#include <string>

#include <velk.h>
#include <velk/identity.h>

int main() {
    const _velk_request request = {VELK_WIRED_INTERFACE, VELK_GET, 399, ""};
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    std::printf("%s %d %s\n", VELK_VERSION, result, GetEscapeString("a/b").c_str());
}
