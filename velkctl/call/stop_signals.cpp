// stop_signals.cpp - the signals that end velkctl, put off while the library is at work.
#include "velkctl/call/stop_signals.h"

#include <array>

#include <unistd.h>

namespace velkctl {
namespace {

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr int kStatusOfSignal = 128;  // as shells show it

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

StopSignals::StopSignals() {
    (void)sigemptyset(&signals_);
    for (const int signal : kStopSignals) {
        // A blocked signal becomes pending even when it is ignored.
        if (!IsIgnored(signal)) {
            (void)sigaddset(&signals_, signal);
        }
    }
    (void)sigprocmask(SIG_BLOCK, &signals_, &before_);
}

StopSignals::~StopSignals() {
    (void)sigprocmask(SIG_SETMASK, &before_, nullptr);
}

int StopSignals::Pending() const {
    sigset_t pending;
    (void)sigemptyset(&pending);
    (void)sigpending(&pending);
    for (const int signal : kStopSignals) {
        if (sigismember(&signals_, signal) == 1 && sigismember(&pending, signal) == 1) {
            return signal;
        }
    }
    return 0;
}

int StatusAfter(int signal) {
    return kStatusOfSignal + signal;
}

void EndBy(int signal) {
    sigset_t only;
    (void)sigemptyset(&only);
    (void)sigaddset(&only, signal);
    (void)::signal(signal, SIG_DFL);
    (void)raise(signal);
    (void)sigprocmask(SIG_UNBLOCK, &only, nullptr);
    _exit(StatusAfter(signal));  // the first process of a namespace is not ended by its own
}

}  // namespace velkctl
