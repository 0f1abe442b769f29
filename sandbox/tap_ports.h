// tap_ports.h - interfaces whose cable is a descriptor of this process; see the kernel's tuntap.
#ifndef SANDBOX_TAP_PORTS_H_
#define SANDBOX_TAP_PORTS_H_

#include <map>
#include <string>

#include "frame/unique_fd.h"
#include "sandbox/network_control.h"
#include "sandbox/ports.h"

namespace sandbox {

// The kernel lets ethtool(8) set their speed and duplex.
class TapPorts : public Ports {
  public:
    static bool ToBeHad();

    void Make(const Port& port) override;
    void Remove(const Port& port) override;
    void SetCarrier(const Port& port, bool carrier) override;
    std::vector<pollfd> Frames() const override;
    void ThrowAway(const pollfd& ready) override;

  private:
    NetworkControl control_;
    std::map<std::string, velk::UniqueFd> taps_;
};

}  // namespace sandbox

#endif  // SANDBOX_TAP_PORTS_H_
