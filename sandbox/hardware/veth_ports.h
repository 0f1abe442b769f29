// veth_ports.h - interfaces whose cable is another interface, in a network of its own.
#ifndef SANDBOX_HARDWARE_VETH_PORTS_H_
#define SANDBOX_HARDWARE_VETH_PORTS_H_

#include "lib/base/unique_fd.h"
#include "sandbox/device/network_control.h"
#include "sandbox/hardware/ports.h"

namespace sandbox {

// Every user may have them on a device, but the kernel does not let their speed be set.
class VethPorts : public Ports {
  public:
    VethPorts();

    void Make(const Port& port) override;
    void Remove(const Port& port) override;
    void SetCarrier(const Port& port, bool carrier) override;

  private:
    velk::UniqueFd network_;  // of the cables, which the device does not see
    NetworkControl device_;
    NetworkControl cables_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_VETH_PORTS_H_
