// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// augeas_get.cpp - a program that gets an address from Augeas and prints it.
#include <cstdio>

#include "bench/augeas_tree.h"

int main() {
    augeas* tree = bench::LoadTree();
    puts(bench::AddressIn(tree));
    aug_close(tree);
    return 0;
}
