// child_call.h - runs a command in a process of its own, so that it can be given up.
#ifndef VELKCTL_CALL_CHILD_CALL_H_
#define VELKCTL_CALL_CHILD_CALL_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/stop_signals.h"

namespace velkctl {

// The process has a session of its own: Ctrl-C at the terminal does not reach the tools that it
// runs, which might be writing a file of the device. What those write is kept from velkctl's own
// output. It does not outlive velkctl.
class ChildCall {
  public:
    // Starts the command; its process sees the signals that velkctl puts off.
    ChildCall(const Command& command, const Data& data, const StopSignals& signals);
    ~ChildCall();
    ChildCall(const ChildCall&) = delete;
    ChildCall& operator=(const ChildCall&) = delete;

    // The errno of why it could not be started; 0 when it was.
    int start_error() const { return start_error_; }

    // Readable once there is something to take.
    int fd() const { return answer_.get(); }
    // Waits for the end; nothing when the process ended without an answer.
    std::optional<Answer> TakeAnswer();
    // The signal that ended the process; 0 when it ended by itself.
    int end_signal() const { return end_signal_; }
    // What the tools have written by now, line by line, each once however often they say it; of
    // very much only the beginning.
    std::vector<std::string> said() const;

    // Ends the process in the middle, and lets its tools end by themselves. False when one of them
    // is running after a moment.
    bool GiveUp();

  private:
    void Reap();

    velk::UniqueFd answer_;
    velk::UniqueFd said_;
    pid_t process_ = -1;
    int start_error_ = 0;
    int end_signal_ = 0;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_CHILD_CALL_H_
