// router.h - what the device's cables lead to: a network of its own with DHCP, DNS and time.
#ifndef SANDBOX_HARDWARE_ROUTER_H_
#define SANDBOX_HARDWARE_ROUTER_H_

#include <optional>
#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "sandbox/hardware/tap_ports.h"

namespace sandbox {

// 192.168.0.1 on the wired network, 192.168.1.1 on the wireless one. As long as it lives,
// ip-netns(8) finds its network under the name "router". Its servers end with it.
class Router {
  public:
    // `folder` has the configuration of its servers. Throws Failure.
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
