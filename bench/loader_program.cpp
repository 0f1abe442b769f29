// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// loader_program.cpp - a C++ program that loads a library, makes its first get and prints the time
// of both in nanoseconds.
#include <chrono>
#include <iostream>

#include <dlfcn.h>

#include "velk.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const _velk_request request = {"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, ""};
    _velk_request response;
    const auto start = std::chrono::steady_clock::now();
    void* library = dlopen(argv[1], RTLD_NOW);
    if (library == nullptr) {
        return 1;
    }
    const auto execute =
        reinterpret_cast<decltype(&execute_velk_command)>(dlsym(library, "execute_velk_command"));
    const int result = execute(&request, &response);
    const std::chrono::nanoseconds took = std::chrono::steady_clock::now() - start;
    std::cout << took.count() << '\n';
    return result == LIB_VELK_SUCCESS ? 0 : 1;
}
