// augeas_get.cpp - a program that asks Augeas for an address and prints it.
#include <cstdio>

#include "bench/augeas_tree.h"

int main() {
    augeas* tree = bench::LoadTree();
    puts(bench::AddressIn(tree));
    aug_close(tree);
    return 0;
}
