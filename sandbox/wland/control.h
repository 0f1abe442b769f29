// control.h - changes how a running daemon replies.
#ifndef SANDBOX_WLAND_CONTROL_H_
#define SANDBOX_WLAND_CONTROL_H_

#include <chrono>
#include <optional>
#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/wland/reply.h"

namespace wland {

// Has an abstract name: the kernel gives it to one process of a device's network, and takes it back
// however that process ends. So it also tells whether another daemon is running.
class ControlSocket {
  public:
    // Throws sandbox::Failure.
    ControlSocket();

    int fd() const { return fd_.get(); }

    // Changes `behaviour` to what was asked for since the last call. Says whether anything was.
    bool Take(Behaviour& behaviour) const;

  private:
    velk::UniqueFd fd_;
};

// Asks the running daemon to reply in this mode; it does so from the next request on. Without a
// delay it keeps the one it has. Throws sandbox::Failure.
void Tell(const std::string& mode, std::optional<std::chrono::milliseconds> delay);

}  // namespace wland

#endif  // SANDBOX_WLAND_CONTROL_H_
