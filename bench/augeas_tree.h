// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// augeas_tree.h - the interfaces file in Augeas, a general library for editing configuration files.
#ifndef BENCH_AUGEAS_TREE_H_
#define BENCH_AUGEAS_TREE_H_

#include <augeas.h>

namespace bench {

// Ends the program if a call of Augeas failed.
void Require(bool done, const char* step);

// Loads only this file: loading all files that Augeas supports takes seconds.
augeas* LoadTree();

// Returns the address of eth0.
const char* AddressIn(augeas* tree);

}  // namespace bench

#endif  // BENCH_AUGEAS_TREE_H_
