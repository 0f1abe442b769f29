// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// terminal.h - the controlling terminal of this program.
#ifndef SANDBOX_SESSION_TERMINAL_H_
#define SANDBOX_SESSION_TERMINAL_H_

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Does nothing unless this program is in the foreground of the terminal.
class Terminal {
  public:
    Terminal();

    // Makes the calling process the leader of a new foreground group. Its present group has no ID
    // in the PID namespace of the device, which some shells do not handle.
    void HandOver() const;
    // Makes the group of this program the foreground group again. A killed shell does not do so.
    void TakeBack() const;

  private:
    void SetForeground(pid_t group) const;

    velk::UniqueFd fd_;
    pid_t group_;
    bool is_foreground_;
};

// Ignores SIGINT and SIGQUIT, which the terminal sends to all its processes but are meant for the
// command. Resets SIGCHLD: if it is ignored, wait(2) returns no exit status.
void IgnoreTerminalSignals();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_TERMINAL_H_
