// wireless_daemon.h - the wireless daemon, which runs while the adapter is in.
#ifndef SANDBOX_HARDWARE_WIRELESS_DAEMON_H_
#define SANDBOX_HARDWARE_WIRELESS_DAEMON_H_

#include <string>
#include <utility>

namespace sandbox {

class WirelessDaemon {
  public:
    // `program` is its path. A program that is not there is neither started nor missed.
    explicit WirelessDaemon(std::string program) : program_(std::move(program)) {}

    // Returns when it takes requests. Throws Failure when it does not start.
    void Start() const;
    // Returns when it has ended, or was not running.
    void Stop() const;

  private:
    std::string program_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_WIRELESS_DAEMON_H_
