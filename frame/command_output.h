// command_output.h - runs a shell line and reads what it wrote into the result file.
#ifndef VELK_FRAME_COMMAND_OUTPUT_H_
#define VELK_FRAME_COMMAND_OUTPUT_H_

#include <optional>
#include <string_view>

#include "frame/line_reader.h"
#include "frame/shell.h"
#include "frame/unique_fd.h"

namespace velk {

// The file that every command line with output is redirected into; one name for all readers.
constexpr char kResultFile[] = "/var/tmp/get_result";

// Keeps two readers of the result file apart, so that neither reads the other's output. Gets run
// without the set/restart lock, so this is a lock of their own: advisory, waited for at most a few
// seconds and then done without, because a stale answer beats a device that no longer answers.
class ResultFileLock {
  public:
    ResultFileLock();

  private:
    UniqueFd fd_;
};

// What one command line printed, from running it to removing the result file. A command line that
// fails is not noticed: an empty result is all that tells.
class CommandOutput {
  public:
    // The line must redirect its output into kResultFile.
    explicit CommandOutput(const CommandLine& command);

    // 0, or why the shell was not run, as CommandLine::Run() says it.
    int run_result() const { return run_result_; }
    // The result file is there and can be read.
    bool is_open() const { return reader_.has_value() && reader_->is_open(); }
    bool is_empty() const { return is_open() && reader_->is_empty(); }

    bool Next(std::string_view& line) { return reader_->Next(line); }

    // Closes the result file and removes it. Without this call it stays for the next reader to
    // overwrite.
    void Remove();

  private:
    ResultFileLock lock_;
    const int run_result_;
    std::optional<LineReader> reader_;
};

}  // namespace velk

#endif  // VELK_FRAME_COMMAND_OUTPUT_H_
