// child_call.h - runs a command in a process of its own, so that it can be stopped.
#ifndef VELKCTL_CALL_CHILD_CALL_H_
#define VELKCTL_CALL_CHILD_CALL_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "velkctl/call/command.h"
#include "velkctl/call/stop_signals.h"

namespace velkctl {

// The process has a session of its own: Ctrl-C at the terminal must not reach its tools, which may
// be writing a file of the device. The output of the tools is kept apart from velkctl's own. The
// process ends with velkctl.
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
    // Waits for the end of the process. Returns nothing if it ended without an answer.
    std::optional<Answer> TakeAnswer();
    // The signal that ended the process; 0 if it ended by itself.
    int end_signal() const { return end_signal_; }
    // The output of the tools so far, without repeated lines and cut after 8 KiB.
    std::vector<std::string> tool_output() const;

    // Kills the process and lets its tools end by themselves. Returns false if a tool still runs
    // after a second.
    bool Stop();

  private:
    void Reap();

    velk::UniqueFd answer_;
    velk::UniqueFd output_;
    pid_t process_ = -1;
    int start_error_ = 0;
    int end_signal_ = 0;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_CHILD_CALL_H_
