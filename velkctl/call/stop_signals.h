// stop_signals.h - the signals that end velkctl, put off while the library is at work.
#ifndef VELKCTL_CALL_STOP_SIGNALS_H_
#define VELKCTL_CALL_STOP_SIGNALS_H_

#include <csignal>

namespace velkctl {

// While it lives, SIGINT, SIGTERM, SIGHUP and SIGQUIT stay pending. One that is ignored stays
// ignored, as nohup(1) and a shell's background jobs want it.
class StopSignals {
  public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // One that has come; 0 when none has.
    int Pending() const;

    const sigset_t& signals() const { return signals_; }
    // What was blocked before: what a child's programs should find.
    const sigset_t& before() const { return before_; }

  private:
    sigset_t signals_;
    sigset_t before_;
};

// What a shell calls the exit status of a process that the signal has ended: 130 after Ctrl-C.
int StatusAfter(int signal);

// Ends the process as if the signal had ended it at once.
[[noreturn]] void EndBy(int signal);

}  // namespace velkctl

#endif  // VELKCTL_CALL_STOP_SIGNALS_H_
