// stop_signals.h - holds back the signals that end velkctl while the library is working.
#ifndef VELKCTL_CALL_STOP_SIGNALS_H_
#define VELKCTL_CALL_STOP_SIGNALS_H_

#include <csignal>

namespace velkctl {

// During its lifetime SIGINT, SIGTERM, SIGHUP and SIGQUIT stay pending. Ignored signals stay
// ignored, as nohup(1) and background jobs of a shell need it.
class StopSignals {
  public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Returns a pending signal, or 0.
    int Pending() const;

    const sigset_t& signals() const { return signals_; }
    // The signal mask from before, for the programs of a child.
    const sigset_t& before() const { return before_; }

  private:
    sigset_t signals_;
    sigset_t before_;
};

// Returns the exit status of a process ended by the signal, as shells report it: 130 after Ctrl-C.
int StatusOfSignal(int signal);

// Ends the process by the signal.
[[noreturn]] void EndBySignal(int signal);

}  // namespace velkctl

#endif  // VELKCTL_CALL_STOP_SIGNALS_H_
