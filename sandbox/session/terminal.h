// terminal.h - the terminal this program was started at.
#ifndef SANDBOX_SESSION_TERMINAL_H_
#define SANDBOX_SESSION_TERMINAL_H_

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Does nothing when the program does not have the terminal to itself.
class Terminal {
  public:
    Terminal();

    // Makes the calling process the leader of a foreground group. The group it comes from has no
    // number on the device, and not every shell copes with that.
    void HandOver() const;
    // A shell that was killed does not give the terminal back.
    void TakeBack() const;

  private:
    void SetForeground(pid_t group) const;

    velk::UniqueFd fd_;
    pid_t group_;
    bool is_ours_;
};

// The keys that interrupt and quit reach every process at the terminal and are meant for the
// command. A caller that ignores SIGCHLD would have us learn no exit status.
void LeaveSignalsToCommand();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_TERMINAL_H_
