// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_output.cpp - runs a shell line and reads its output from the result file.
#include "lib/base/command_output.h"

#include <utility>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "velk/request.h"

namespace velk {
namespace {

// No tool prints a longer line. A planted file without a newline must not fill the memory.
constexpr size_t kLongestLine = 64 * 1024;

}  // namespace

CommandOutput::CommandOutput(const CommandLine& command, ReadersTurn::WaitMode wait_mode)
    : turn_(wait_mode), run_result_(Run(command)) {
}

int CommandOutput::Run(const CommandLine& command) {
    if (!command.fits()) {
        return command.Run();
    }
    if (!PrepareResultFile()) {
        return LIB_VELK_SUCCESS;  // the same as for a line that creates no file
    }
    const int result = command.Run();
    UniqueFd file = OpenResultFile();
    if (result == LIB_VELK_SUCCESS) {
        reader_.emplace(std::move(file), kLongestLine);
    }
    return result;
}

void CommandOutput::Remove() {
    reader_.reset();
    (void)CommandLine("rm %s", kResultFile).Run();
}

}  // namespace velk
