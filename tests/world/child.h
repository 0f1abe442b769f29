// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// child.h - runs a function in a process of its own, under other conditions.
#ifndef TESTS_WORLD_CHILD_H_
#define TESTS_WORLD_CHILD_H_

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

namespace world {

constexpr uid_t kNobody = 65534;

// A condition that is not set stays as in the test program.
struct Conditions {
    std::optional<uid_t> user = {};  // user and group of this number, no other groups
    std::optional<mode_t> umask = {};
    std::optional<std::string> locale = {};           // setlocale(3), and LC_ALL for programs
    std::vector<std::pair<int, rlim_t>> limits = {};  // {RLIMIT_NOFILE, 20}: soft and hard
};

// Returns false if the machine lacks the locale, or the private device has no other users. The test
// then skips with the reason.
bool IsPossible(const Conditions& conditions);

// A child process that runs `work` and ends. It never outlives the object.
class Child {
  public:
    Child(const Conditions& conditions, const std::function<int()>& work);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }
    // Waits for the end of the child. Returns the result of `work`, 128 plus the signal that ended
    // the child, or kImpossible.
    int Wait();
    // Ends the child, but not the processes that it started.
    void Kill();

    static constexpr int kImpossible = 125;  // the conditions could not be set

  private:
    pid_t pid_;
};

// Runs `work` in a child and returns the result of Child::Wait().
int InChild(const Conditions& conditions, const std::function<int()>& work);

}  // namespace world

#endif  // TESTS_WORLD_CHILD_H_
