// stop_signals.h - the signals that end the daemon.
#ifndef SANDBOX_WLAND_STOP_SIGNALS_H_
#define SANDBOX_WLAND_STOP_SIGNALS_H_

#include "lib/base/unique_fd.h"

namespace wland {

// Holds SIGTERM and SIGINT back for good. They are looked for, so that whatever the daemon has made
// is removed on the way out.
class StopSignals {
  public:
    // Throws sandbox::Failure.
    StopSignals();

    // Readable once one of them has come.
    int fd() const { return fd_.get(); }
    bool HasCome() const;

  private:
    velk::UniqueFd fd_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_STOP_SIGNALS_H_
