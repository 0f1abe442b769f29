// augeas_tree.h - the interfaces file as Augeas, the editing library that one would take otherwise,
// holds it.
#ifndef BENCH_AUGEAS_TREE_H_
#define BENCH_AUGEAS_TREE_H_

#include <augeas.h>

namespace bench {

// Ends the program when a step of Augeas failed.
void Require(bool done, const char* what);

// Told to load this one file: all the files it knows would take it seconds.
augeas* LoadTree();

// The address of eth0.
const char* AddressIn(augeas* tree);

}  // namespace bench

#endif  // BENCH_AUGEAS_TREE_H_
