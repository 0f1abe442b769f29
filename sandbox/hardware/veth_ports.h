// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// veth_ports.h - veth interfaces: the other end of the cable is in a private namespace.
#ifndef SANDBOX_HARDWARE_VETH_PORTS_H_
#define SANDBOX_HARDWARE_VETH_PORTS_H_

#include "lib/base/unique_fd.h"
#include "sandbox/device/network_control.h"
#include "sandbox/hardware/ports.h"

namespace sandbox {

// Every user may make them on a device, but the kernel does not let their speed be set.
class VethPorts : public Ports {
  public:
    VethPorts();

    void Make(const Port& port) override;
    void Remove(const Port& port) override;
    void SetCarrier(const Port& port, bool carrier) override;

  private:
    velk::UniqueFd network_;  // the network namespace of the cables, hidden from the device
    NetworkControl device_;
    NetworkControl cables_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_VETH_PORTS_H_
