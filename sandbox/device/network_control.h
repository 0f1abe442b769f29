// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// network_control.h - configures network interfaces with netdevice(7) calls.
#ifndef SANDBOX_DEVICE_NETWORK_CONTROL_H_
#define SANDBOX_DEVICE_NETWORK_CONTROL_H_

#include <array>
#include <string>

#include <netinet/in.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct StaticAddress {
    in_addr address = {};
    in_addr mask = {};
    in_addr gateway = {};  // INADDR_ANY: none
};

using HardwareAddress = std::array<unsigned char, 6>;

struct LinkMode {
    bool negotiates = true;
    unsigned speed = 100;  // in Mbit/s
    bool is_full_duplex = true;
};

// Acts on the network namespace in which it was made, even after the process enters another one.
// All functions throw Failure.
class NetworkControl {
  public:
    NetworkControl();

    void BringUp(const std::string& interface) const;
    void BringDown(const std::string& interface) const;
    // True if the kernel shows the interface as running.
    bool IsRunning(const std::string& interface) const;
    // The interface must be down.
    void SetHardwareAddress(const std::string& interface, const HardwareAddress& address) const;
    void SetAddress(const std::string& interface, const StaticAddress& address) const;
    // Makes the gateway the default one. Does nothing if it is outside the network of the
    // interface, as the kernel refuses it.
    void SetGateway(const std::string& interface, const StaticAddress& address) const;
    void SetLinkMode(const std::string& interface, const LinkMode& mode) const;

  private:
    velk::UniqueFd socket_;
};

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_NETWORK_CONTROL_H_
