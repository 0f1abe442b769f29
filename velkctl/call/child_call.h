// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// child_call.h - runs a command in a process of its own, so that it can be stopped.
#ifndef VELKCTL_CALL_CHILD_CALL_H_
#define VELKCTL_CALL_CHILD_CALL_H_

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/files/process_list.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A process that was started for the command.
struct RunningTool {
    pid_t process;
    std::string command;  // "ifup eth0"
};

// The process has a session of its own: Ctrl-C at the terminal must not reach its tools, which may
// be writing a file of the device. The output of the tools is kept apart from velkctl's own. The
// process ends with velkctl.
//
// The process stays after its answer, as the parent of every tool that the command started in the
// background, also of a daemon with a session of its own. So the tools can be found and ended.
class ChildCall {
  public:
    // Starts the command. Its process does not block the signals that velkctl holds back.
    ChildCall(const Command& command, const Data& data, const StopSignals& signals);
    ~ChildCall();
    ChildCall(const ChildCall&) = delete;
    ChildCall& operator=(const ChildCall&) = delete;

    // The errno of a failed start, or 0.
    int start_error() const { return start_error_; }

    // Readable as soon as an answer has come.
    int fd() const { return answer_.get(); }
    // Waits for the answer. Returns nothing if the process ended without one.
    std::optional<Answer> TakeAnswer();
    // The signal that ended the process before its answer; 0 if none did.
    int end_signal() const { return end_signal_; }
    // The lines that the tools printed so far, in their order. Of more than 64 KiB, the first.
    std::vector<std::string> tool_output() const;

    // The tools at work, without daemons.
    std::vector<RunningTool> Tools() const;

    // Ends the process and all that was started for the command. The tools have `grace` to end by
    // themselves. Returns those that cannot be ended, such as tools of another user. Does nothing
    // if the process has ended, or could not be started.
    std::vector<RunningTool> Stop(std::chrono::milliseconds grace);

  private:
    void End();
    void Reap();
    std::vector<Process> Descendants() const;
    bool TryToEnd(int signal, std::chrono::milliseconds longest) const;

    velk::UniqueFd answer_;
    velk::UniqueFd output_;
    pid_t process_ = -1;
    int start_error_ = 0;
    int end_signal_ = 0;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_CHILD_CALL_H_
