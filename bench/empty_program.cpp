// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// empty_program.cpp - the cost of starting a C++ program.
#include <iostream>

int main() {
    std::cout << "1.0\n";
    return 0;
}
