// veth_ports.h - interfaces whose cable is another interface, in a network of its own.
#ifndef SANDBOX_VETH_PORTS_H_
#define SANDBOX_VETH_PORTS_H_

#include "frame/unique_fd.h"
#include "sandbox/network_control.h"
#include "sandbox/ports.h"

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

#endif  // SANDBOX_VETH_PORTS_H_
