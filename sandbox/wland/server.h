// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server.h - receives requests and sends replies.
#ifndef SANDBOX_WLAND_SERVER_H_
#define SANDBOX_WLAND_SERVER_H_

#include <chrono>
#include <deque>
#include <string>

#include "sandbox/wland/control.h"
#include "sandbox/wland/protocol.h"
#include "sandbox/wland/records.h"
#include "sandbox/wland/reply_modes.h"
#include "sandbox/wland/stop_signals.h"
#include "velk/wlan.h"

namespace wland {

class ReadySemaphore;

class Server {
  public:
    // Makes the sockets, so that requests can be sent. Throws sandbox::Failure.
    Server(const Behaviour& behaviour, const Records& records, const StopSignals& stop);

    // Serves until a stop signal comes. Throws sandbox::Failure.
    void Run();

  private:
    using Clock = std::chrono::steady_clock;

    struct LateReply {
        Clock::time_point due;
        std::string bytes;
    };

    void TakeOrders();
    void TakeRequest();
    void Answer(const Message& request);
    void Reply(const std::string& bytes);
    bool WaitForPost(const ReadySemaphore& ready, Clock::time_point deadline) const;
    void SendDueReplies();
    int MillisecondsToNextReply() const;

    const StopSignals& stop_;
    Behaviour behaviour_;
    ReplyModeSocket control_;  // first, because it detects a second daemon
    RequestSocket requests_;
    Records records_;
    std::deque<LateReply> late_replies_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_SERVER_H_
