// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stop_signals.h - the signals that end the daemon.
#ifndef SANDBOX_WLAND_STOP_SIGNALS_H_
#define SANDBOX_WLAND_STOP_SIGNALS_H_

#include "lib/base/unique_fd.h"

namespace wland {

// Blocks SIGTERM and SIGINT permanently. The daemon polls for them, so that destructors run and
// remove its files.
class StopSignals {
  public:
    // Throws sandbox::Failure.
    StopSignals();

    // Returns a descriptor that is readable once a signal has arrived.
    int fd() const { return fd_.get(); }
    bool HasArrived() const;

  private:
    velk::UniqueFd fd_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_STOP_SIGNALS_H_
