// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control.h - changes how a running daemon replies.
#ifndef SANDBOX_WLAND_CONTROL_H_
#define SANDBOX_WLAND_CONTROL_H_

#include <chrono>
#include <optional>
#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/wland/reply_modes.h"

namespace wland {

// The socket has an abstract name. Only one process of a network namespace can have it, and the
// kernel removes it when that process ends. So it also shows whether another daemon is running.
class ReplyModeSocket {
  public:
    // Throws sandbox::Failure.
    ReplyModeSocket();

    int fd() const { return fd_.get(); }

    // Applies the orders received since the last call to `behaviour`. Returns true if it changed.
    bool Take(Behaviour& behaviour) const;

  private:
    velk::UniqueFd fd_;
};

// Changes the reply mode of the running daemon, from its next request on. Without a delay, the
// present delay is kept. Throws sandbox::Failure.
void SetReplyMode(const std::string& mode, std::optional<std::chrono::milliseconds> delay);

}  // namespace wland

#endif  // SANDBOX_WLAND_CONTROL_H_
