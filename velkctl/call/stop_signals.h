// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stop_signals.h - holds back the signals that end velkctl while the library is working, and ends
// it by a signal afterwards.
#ifndef VELKCTL_CALL_STOP_SIGNALS_H_
#define VELKCTL_CALL_STOP_SIGNALS_H_

#include <csignal>
#include <string>

#include "velkctl/report/report.h"

namespace velkctl {

// During its lifetime SIGINT, SIGTERM, SIGHUP and SIGQUIT stay pending. Ignored signals stay
// ignored, as nohup(1) and background jobs of a shell need it. One may live within another: the
// outer one then releases the signals.
class StopSignals {
  public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Returns a pending signal, or 0.
    int Pending() const;

    const sigset_t& signals() const { return signals_; }
    // The signal mask from before the outermost one, for the programs of a child.
    static const sigset_t& before();

  private:
    sigset_t signals_;
    sigset_t before_;
    const StopSignals* const outer_;  // null: none
};

// Ignores these signals in this process from now on. Tools that it starts get them as usual.
void IgnoreStopSignals();

// Returns the exit status of a process ended by the signal, as shells report it: 130 after Ctrl-C.
int StatusOfSignal(int signal);

// Ends the process by the signal.
[[noreturn]] void EndBySignal(int signal);

// Prints the output so far and ends velkctl by the signal. `state` is the state of the change:
// "eth0.dns is already changed"; empty if nothing was changed, which needs no message.
[[noreturn]] void EndInterrupted(int signal, const std::string& state, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_STOP_SIGNALS_H_
