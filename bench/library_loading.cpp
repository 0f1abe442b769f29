// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_loading.cpp - compares dlopen(3) and the first get with those of a library of one
// function.
#include "bench/comparison.h"
#include "bench/groups.h"
#include "bench/run_program.h"

namespace bench {
namespace {

Measured LoadedFrom(const char* library) {
    return [library] { return NumberFrom({Built("velk_bench_loader"), Built(library)}) / 1e9; };
}

}  // namespace

void AddLoading() {
    Compare({.name = "loading",
             .ours = LoadedFrom("libvelk.so.1"),
             .other = LoadedFrom("libvelk_bench_probe.so")});
}

}  // namespace bench
