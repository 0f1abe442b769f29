// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// router.h - a simulated router: a network namespace with DHCP, DNS and time servers.
#ifndef SANDBOX_HARDWARE_ROUTER_H_
#define SANDBOX_HARDWARE_ROUTER_H_

#include <optional>
#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "sandbox/hardware/tap_ports.h"

namespace sandbox {

// Has the address 192.168.0.1 on the wired network and 192.168.1.1 on the wireless one. While it
// exists, its network namespace is named "router" for ip-netns(8). Its servers end with it.
class Router {
  public:
    // `folder` holds the configuration of the servers. Throws Failure.
    explicit Router(const std::string& folder);
    Router(const Router&) = delete;
    Router& operator=(const Router&) = delete;
    ~Router();

    TapPorts& ports() { return *ports_; }
    const TapPorts& ports() const { return *ports_; }

  private:
    void Build(const std::string& folder);
    void EndTimeServer() const;

    velk::UniqueFd network_;
    std::optional<TapPorts> ports_;
    pid_t time_server_ = 0;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_ROUTER_H_
