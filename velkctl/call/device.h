// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device.h - the device for the verbs: settings to read and to change.
#ifndef VELKCTL_CALL_DEVICE_H_
#define VELKCTL_CALL_DEVICE_H_

#include <string>
#include <string_view>

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// The only path from a verb to the library. Applies --wait and --timeout and cleans up after a
// signal.
//
// SIGINT, SIGTERM, SIGHUP and SIGQUIT end a plain read of files at once: it makes no files. Any
// other command runs in a process of its own. After a signal, a short command may finish; a long
// one is ended and cleaned up. Then velkctl ends by the signal and no call returns. With another
// OnSignal the caller holds the signals back, by StopSignals.
class Device {
  public:
    Device(const TimeLimits& limits, Report& report, OnSignal on_signal = OnSignal::kEndVelkctl)
        : limits_(limits), report_(report), on_signal_(on_signal) {}

    void WatchSets(SetWatcher& watcher) { watcher_ = &watcher; }
    void StopWatching() { watcher_ = nullptr; }

    Answer Get(const Setting& setting) const;
    // The same, but stops after so many seconds at the latest. A plain read of files is limited by
    // --timeout alone: a limit would cost it a process.
    Answer GetWithin(const Setting& setting, int seconds) const;
    Answer Set(const Setting& setting, const Data& value) const;

    // Returns the value as text; empty if it cannot be read.
    std::string PrintedValue(const Setting& setting) const;

    // True if the interface has the method static. False if the method cannot be read.
    bool HasStaticMethod(std::string_view interface) const;

    // Runs the command with these data bytes. `subject` is its name in messages: "restart of eth0".
    Answer Execute(const Command& command, const Data& data, const std::string& subject) const;

    // Restarts the interface. The restart includes the tools that the library leaves at work in the
    // background: it takes until they end.
    Answer Restart(const std::string& interface, const Data& data) const;

  private:
    Answer Run(const PendingCall& call) const;
    Answer ExecuteOnce(const PendingCall& call) const;
    Answer TryAgain(const PendingCall& call, int seconds, Answer answer) const;

    const TimeLimits limits_;
    Report& report_;
    const OnSignal on_signal_;
    SetWatcher* watcher_ = nullptr;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_DEVICE_H_
