// network_control.h - changes interfaces as ifconfig(8) and ethtool(8) do, by netdevice(7).
#ifndef SANDBOX_DEVICE_NETWORK_CONTROL_H_
#define SANDBOX_DEVICE_NETWORK_CONTROL_H_

#include <string>

#include <netinet/in.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct StaticAddress {
    in_addr address = {};
    in_addr mask = {};
};

// Acts on the network its maker was in, whatever network that process enters afterwards. Failing
// throws Failure.
class NetworkControl {
  public:
    NetworkControl();

    void BringUp(const std::string& interface) const;
    void BringDown(const std::string& interface) const;
    // 02:00:00:00:00 and the last byte; while the interface is down.
    void SetHardwareAddress(const std::string& interface, unsigned char last_byte) const;
    void SetAddress(const std::string& interface, const StaticAddress& address) const;
    // 100 Mbit/s, full duplex, negotiated.
    void SetUsualSpeed(const std::string& interface) const;

  private:
    velk::UniqueFd socket_;
};

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_NETWORK_CONTROL_H_
