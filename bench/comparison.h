// comparison.h - measures two ways of doing one task against each other, turn by turn.
#ifndef BENCH_COMPARISON_H_
#define BENCH_COMPARISON_H_

#include <functional>
#include <string>
#include <vector>

namespace bench {

// Does a task and says how many seconds it took.
using Measured = std::function<double()>;

// The seconds one call takes, as the mean of `calls` in a row.
Measured Timed(std::function<void()> call, int calls = 1);

double Median(std::vector<double> values);

struct Comparison {
    std::string name;
    Measured ours;
    Measured other;
    int samples = 200;
    std::function<void()> prepare = [] {};  // before the first sample
    std::function<void()> restore = [] {};  // behind the last
};

// Registers a benchmark that takes samples of both in turn, so that whatever else the machine does
// meets both alike. Its time is ours; its counters are the medians of both in nanoseconds and of
// "ratio", ours by the other, over the pairs of neighbouring samples.
void Compare(const Comparison& comparison);

// Registers a benchmark that only reports a number.
void Report(const std::string& name, const std::string& counter, std::function<double()> number);

}  // namespace bench

#endif  // BENCH_COMPARISON_H_
