// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// watched_call.h - runs a command that a deadline or a signal can end.
#ifndef VELKCTL_CALL_WATCHED_CALL_H_
#define VELKCTL_CALL_WATCHED_CALL_H_

#include <chrono>
#include <optional>
#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/report/report.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Is called around each attempt of a set. An attempt is refused while another program changes
// settings; with --wait the next one follows.
class SetWatcher {
  public:
    // Returns false while another program changes settings: the attempt is then refused without the
    // library.
    virtual bool BeforeAttempt() = 0;
    // Is also called before a signal ends velkctl, if the set was finished.
    virtual void AfterAttempt(const Answer& answer) = 0;

  protected:
    ~SetWatcher() = default;
};

// The effect of a signal during a command.
enum class OnSignal {
    kEndVelkctl,     // ends the command and velkctl
    kEndCommand,     // ends the command: the caller puts the device in order, and ends velkctl
    kFinishCommand,  // none: the caller is putting the device in order
};

// A command that is running, and the data to report about it.
struct PendingCall {
    const Command& command;
    const Data& data;
    const std::string& subject;  // its name in messages: "eth1.signal"
    std::optional<std::chrono::steady_clock::time_point> deadline;
    Report& report;
    // The command ends with its tools: the library leaves the ifup of eth1 in the background.
    bool awaits_tools = false;
    SetWatcher* watcher = nullptr;
    OnSignal on_signal = OnSignal::kEndVelkctl;

    bool is_late() const { return deadline && std::chrono::steady_clock::now() >= *deadline; }
};

// Runs the command in a process of its own. The deadline or a signal ends that process and all that
// was started for the command, and cleans up after it. Processes that cannot be ended are reported.
// With kEndVelkctl this function does not return after a signal; with kEndCommand the answer is
// marked as interrupted. The report keeps the output of
// the device's tools, and shows it if the command fails.
Answer ExecuteWatched(const PendingCall& call);

}  // namespace velkctl

#endif  // VELKCTL_CALL_WATCHED_CALL_H_
