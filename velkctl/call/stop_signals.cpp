// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stop_signals.cpp - holds back the signals that end velkctl while the library is working, and ends
// it by a signal afterwards.
#include "velkctl/call/stop_signals.h"

#include <array>

#include <unistd.h>

#include "velkctl/report/output.h"

namespace velkctl {
namespace {

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr int kStatusOfSignal = 128;  // as shells report it

// The innermost one; null: none.
const StopSignals* innermost = nullptr;

// Unlike SIG_IGN, a handler is not inherited by programs.
void Ignore(int /*signal*/) {
}

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 &&
           (action.sa_handler == SIG_IGN || action.sa_handler == Ignore);
}

}  // namespace

StopSignals::StopSignals() : outer_(innermost) {
    (void)sigemptyset(&signals_);
    for (const int signal : kStopSignals) {
        // A blocked signal becomes pending even if it is ignored.
        if (!IsIgnored(signal)) {
            (void)sigaddset(&signals_, signal);
        }
    }
    (void)sigprocmask(SIG_BLOCK, &signals_, &before_);
    innermost = this;
}

StopSignals::~StopSignals() {
    innermost = outer_;
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

const sigset_t& StopSignals::before() {
    const StopSignals* outermost = innermost;
    while (outermost->outer_ != nullptr) {
        outermost = outermost->outer_;
    }
    return outermost->before_;
}

void IgnoreStopSignals() {
    struct sigaction action {};
    action.sa_handler = Ignore;
    action.sa_flags = SA_RESTART;
    for (const int signal : kStopSignals) {
        (void)sigaction(signal, &action, nullptr);
    }
}

int StatusOfSignal(int signal) {
    return kStatusOfSignal + signal;
}

void EndBySignal(int signal) {
    sigset_t only;
    (void)sigemptyset(&only);
    (void)sigaddset(&only, signal);
    (void)::signal(signal, SIG_DFL);
    (void)raise(signal);
    (void)sigprocmask(SIG_UNBLOCK, &only, nullptr);
    // The first process of a PID namespace survives a signal that it sends to itself.
    _exit(StatusOfSignal(signal));
}

void EndInterrupted(int signal, const std::string& state, Report& report) {
    if (!state.empty()) {
        report.Complain("interrupted; " + state);
    } else if (report.is_json()) {
        report.Complain("interrupted");
    }
    report.Finish(StatusOfSignal(signal));
    (void)FinishPrinting();
    EndBySignal(signal);
}

}  // namespace velkctl
