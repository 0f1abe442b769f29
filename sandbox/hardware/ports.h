// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ports.h - the interfaces of a device and their cables.
#ifndef SANDBOX_HARDWARE_PORTS_H_
#define SANDBOX_HARDWARE_PORTS_H_

#include <memory>
#include <vector>

#include <poll.h>

#include "sandbox/device/network_control.h"

namespace sandbox {

struct Port {
    const char* name;
    const char* cable;
    HardwareAddress address;
};

inline constexpr Port kWiredPort = {"eth0", "cable0", {0x02, 0, 0, 0, 0, 0x10}};
inline constexpr Port kWirelessPort = {"eth1", "cable1", {0x02, 0, 0, 0, 0, 0x11}};

// The ports of the router at the other ends of these cables.
inline constexpr Port kRouterWiredPort = {"r0", "", {0x02, 0, 0, 0, 0, 0x01}};
inline constexpr Port kRouterWirelessPort = {"r1", "", {0x02, 0, 0, 0, 0, 0x02}};

// Interfaces of one kind. They end with the device's network namespace. All functions throw
// Failure.
class Ports {
  public:
    Ports() = default;
    Ports(const Ports&) = delete;
    Ports& operator=(const Ports&) = delete;
    virtual ~Ports() = default;

    // Makes the interface and brings it up, with a carrier.
    virtual void Make(const Port& port) = 0;
    virtual void Remove(const Port& port) = 0;
    virtual void SetCarrier(const Port& port, bool carrier) = 0;

    // Returns the descriptors to poll for sent frames. ForwardFrame() takes one that is ready.
    virtual std::vector<pollfd> PollFds() const { return {}; }
    virtual void ForwardFrame(const pollfd& /*ready*/) {}
};

// True if this user may make interfaces on which ethtool(8) can set speed and duplex.
bool PortsKeepSpeed();

// Returns the best available kind of interfaces, without making any. Call it in the network
// namespace of the device.
std::unique_ptr<Ports> ChoosePorts();

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_PORTS_H_
