// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_output.h - runs a shell line and reads its output from the result file.
#ifndef VELK_BASE_COMMAND_OUTPUT_H_
#define VELK_BASE_COMMAND_OUTPUT_H_

#include <optional>
#include <string_view>

#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/readers_turn.h"
#include "lib/base/result_file.h"
#include "lib/base/shell.h"

namespace velk {

// The output of one command line, from running it to removing the result file. A failing command is
// not detected: its output is empty.
class CommandOutput {
  public:
    // The line must redirect its output into kResultFile.
    explicit CommandOutput(const CommandLine& command,
                           ReadersTurn::WaitMode wait_mode = ReadersTurn::WaitMode::kInQueue);

    // Returns 0, or the result of CommandLine::Run() if the shell was not run. Returns 0 too if
    // the line was not run because the result file cannot be the caller's own.
    int run_result() const { return run_result_; }
    // Returns true if the result file exists and can be read.
    bool is_open() const { return reader_.has_value() && reader_->is_open(); }
    bool is_empty() const { return is_open() && reader_->is_empty(); }

    ReadersTurn::WaitMode next_wait_mode() const { return turn_.next_wait_mode(); }

    bool ReadLine(std::string_view& line) { return reader_->ReadLine(line); }

    // Closes the result file and removes it. Without this call it remains, and the next reader
    // overwrites it.
    void Remove();

  private:
    int Run(const CommandLine& command);

    const ReadersTurn turn_;
    std::optional<LineReader> reader_;
    const int run_result_;
};

}  // namespace velk

#endif  // VELK_BASE_COMMAND_OUTPUT_H_
