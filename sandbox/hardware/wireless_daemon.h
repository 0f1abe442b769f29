// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_daemon.h - starts and stops the wireless daemon.
#ifndef SANDBOX_HARDWARE_WIRELESS_DAEMON_H_
#define SANDBOX_HARDWARE_WIRELESS_DAEMON_H_

#include <string>
#include <utility>
#include <vector>

namespace sandbox {

class WirelessDaemon {
  public:
    // `program` is the path of the daemon. Start() does nothing if it does not exist. `arguments`
    // are further arguments.
    WirelessDaemon(std::string program, std::vector<std::string> arguments)
        : program_(std::move(program)), arguments_(std::move(arguments)) {}

    // Returns once the daemon accepts requests. Throws Failure if it does not start.
    void Start() const;
    // Returns once the daemon has ended. Does nothing if it is not running.
    void Stop() const;

  private:
    std::string program_;
    std::vector<std::string> arguments_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_WIRELESS_DAEMON_H_
