// process.h - programs run as a user runs them.
#ifndef BENCH_PROCESS_H_
#define BENCH_PROCESS_H_

#include <functional>
#include <string>
#include <vector>

namespace bench {

using Arguments = std::vector<std::string>;

// A call that runs a program, found as a shell finds it, and waits for it. What it prints is thrown
// away; another exit status than 0 ends this program.
std::function<void()> Process(const Arguments& arguments);

// Runs a program and returns the number that it prints.
double NumberFrom(const Arguments& arguments);

// A program of the build folder.
std::string Built(const std::string& name);

}  // namespace bench

#endif  // BENCH_PROCESS_H_
