// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_shell.h - replaces the shell: prints the test's texts at once and without tools.
#ifndef TESTS_SUPPORT_FAKE_SHELL_H_
#define TESTS_SUPPORT_FAKE_SHELL_H_

#include <map>
#include <string>
#include <vector>

#include "support/libc_recorder.h"

namespace testkit {

// The line that shows whether the cable of eth0 is in.
inline constexpr char kShowLink[] = "sudo /usr/sbin/ethtool eth0";

// During its lifetime, no shell line is run. "TOOL > FILE" writes the tool's output into FILE, "rm
// FILE" removes it and "cat FILE > FILE" copies; lines that print to /dev/null are not run. A tool
// without output leaves an empty file, as the shell does if it cannot find a command. Only tools
// given to RunsForReal() are run. Lines are recorded as usual.
class FakeShell {
  public:
    FakeShell();
    ~FakeShell();
    FakeShell(const FakeShell&) = delete;
    FakeShell& operator=(const FakeShell&) = delete;

    // Each run of a line that begins with `tool` prints the next text; the last one stays.
    void Prints(const std::string& tool, const std::vector<std::string>& outputs);
    // A line that begins with `tool` leaves no file at all.
    void LeavesNoFile(const std::string& tool);

    // A line that begins with `tool` is run by the real shell, with this search path.
    void RunsForReal(const std::string& tool, const std::string& search_path);

    // Returns all lines so far, including those of child processes. The recorder of this process
    // lacks them.
    std::vector<std::string> Lines() const;

  private:
    struct Tool {
        std::vector<std::string> outputs;
        size_t runs = 0;
        bool leaves_file = true;
    };

    void Run(const std::string& line);
    void Redirect(const std::string& command, const std::string& file);

    std::map<std::string, Tool> tools_;
    std::map<std::string, std::string> search_paths_;  // the PATH that each tool gets
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_FAKE_SHELL_H_
