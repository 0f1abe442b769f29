// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// comparison.cpp - compares two implementations of one task, in alternating samples.
#include "bench/comparison.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {
namespace {

void Run(benchmark::State& state, const Comparison& comparison) {
    comparison.prepare();
    (void)comparison.ours();
    (void)comparison.other();  // the first call of each is warm-up
    std::vector<double> ours;
    std::vector<double> other;
    std::vector<double> ratios;
    for (auto _ : state) {
        const bool ours_first = ours.size() % 2 == 0;
        if (ours_first) {
            ours.push_back(comparison.ours());
        }
        other.push_back(comparison.other());
        if (!ours_first) {
            ours.push_back(comparison.ours());
        }
        ratios.push_back(ours.back() / other.back());
        state.SetIterationTime(ours.back());
    }
    comparison.restore();
    state.counters["ours_ns"] = Median(ours) * 1e9;
    state.counters["other_ns"] = Median(other) * 1e9;
    state.counters["ratio"] = Median(ratios);
}

}  // namespace

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Measured Timed(std::function<void()> call, int calls) {
    return [call = std::move(call), calls] {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < calls; ++i) {
            call();
        }
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        return took.count() / calls;
    };
}

void Compare(const Comparison& comparison) {
    benchmark::RegisterBenchmark(comparison.name.c_str(),
                                 [comparison](benchmark::State& state) { Run(state, comparison); })
        ->UseManualTime()
        ->Iterations(comparison.samples)
        ->Unit(benchmark::kMicrosecond);
}

void LeaveOut(const std::string& name, const std::string& reason) {
    benchmark::RegisterBenchmark(
        name.c_str(), [reason](benchmark::State& state) { state.SkipWithError(reason.c_str()); });
}

void Report(const std::string& name, const std::string& counter, std::function<double()> number) {
    benchmark::RegisterBenchmark(name.c_str(), [counter, number = std::move(number)](
                                                   benchmark::State& state) {
        for (auto _ : state) {
            state.counters[counter] = number();
        }
    })->Iterations(1);
}

}  // namespace bench
