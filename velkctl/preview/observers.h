// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// observers.h - write down the steps of the library, in a trial or for real.
#ifndef VELKCTL_PREVIEW_OBSERVERS_H_
#define VELKCTL_PREVIEW_OBSERVERS_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/call/library_observer.h"
#include "velkctl/preview/event_log.h"

namespace velkctl {

// Lets everything pass.
class TraceObserver : public LibraryObserver {
  public:
    explicit TraceObserver(const EventLog& log) : log_(log) {}

    void Begin(const Command& command) override;
    int RunShellLine(const char* line, SystemFunction run) override;
    unsigned Wait(unsigned seconds, SleepFunction sleep) override;
    bool TakeLogLine(std::string_view line) override;
    bool KeepsMessage(std::string_view message) override;
    void ReadReply(void* bytes, size_t size) override;

  protected:
    const EventLog& log() const { return log_; }

  private:
    const EventLog& log_;
};

// Keeps from the device all that would change it: shell lines that act on it, log lines, messages
// to the wireless daemon. Skips the waits. A query of the daemon passes. Its reply has the
// configuration that an earlier command of the trial would have stored.
class TrialObserver : public TraceObserver {
  public:
    using TraceObserver::TraceObserver;

    int RunShellLine(const char* line, SystemFunction run) override;
    unsigned Wait(unsigned seconds, SleepFunction sleep) override;
    bool TakeLogLine(std::string_view line) override;
    bool KeepsMessage(std::string_view message) override;
    void ReadReply(void* bytes, size_t size) override;

  private:
    int16_t last_message_ = 0;   // its type
    std::string configuration_;  // the last one to store; empty: none
};

// Returns the type of a message to the wireless daemon; 0 for none.
int16_t MessageType(std::string_view message);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_OBSERVERS_H_
