// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_loading.cpp - compares dlopen(3) and the first get with those of a library of one
// function.
#include "bench/comparison.h"
#include "bench/groups.h"
#include "bench/run_program.h"

namespace bench {
namespace {

Measured LoadedBy(const char* loader, const char* library) {
    return [=] { return NumberFrom({Built(loader), Built(library)}) / 1e9; };
}

}  // namespace

void AddLoading() {
    Compare({.name = "loading",
             .ours = LoadedBy("velk_bench_loader", "libvelk.so.1"),
             .other = LoadedBy("velk_bench_loader", "libvelk_bench_probe.so")});
    Compare({.name = "loading/c",
             .ours = LoadedBy("velk_bench_c_loader", "libvelk-c.so.1"),
             .other = LoadedBy("velk_bench_c_loader", "libvelk_bench_c_probe.so")});
    Compare({.name = "loading/c_and_all_functions",
             .ours = LoadedBy("velk_bench_c_loader", "libvelk.so.1"),
             .other = LoadedBy("velk_bench_c_loader", "libvelk_bench_c_probe.so")});
}

}  // namespace bench
