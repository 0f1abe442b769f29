// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// comparison.h - compares two implementations of one task, in alternating samples.
#ifndef BENCH_COMPARISON_H_
#define BENCH_COMPARISON_H_

#include <functional>
#include <string>
#include <vector>

namespace bench {

// Performs a task and returns its duration in seconds.
using Measured = std::function<double()>;

// Measures the duration of one call as the mean of `calls` consecutive calls.
Measured Timed(std::function<void()> call, int calls = 1);

double Median(std::vector<double> values);

struct Comparison {
    std::string name;
    Measured ours;
    Measured other;
    int samples = 200;
    std::function<void()> prepare = [] {};  // before the first sample
    std::function<void()> restore = [] {};  // after the last sample
};

// Registers a benchmark that alternates samples of both, so that other load affects both equally.
// Its time is that of `ours`. Its counters are the medians of both in nanoseconds, and "ratio": the
// median of ours / other over pairs of neighbouring samples.
void Compare(const Comparison& comparison);

// Registers a benchmark that prints its name and the reason why it cannot run here.
void LeaveOut(const std::string& name, const std::string& reason);

// Registers a benchmark that only reports a number.
void Report(const std::string& name, const std::string& counter, std::function<double()> number);

}  // namespace bench

#endif  // BENCH_COMPARISON_H_
