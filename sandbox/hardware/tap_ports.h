// tap_ports.h - interfaces whose cable is a descriptor of this process; see the kernel's tuntap.
#ifndef SANDBOX_HARDWARE_TAP_PORTS_H_
#define SANDBOX_HARDWARE_TAP_PORTS_H_

#include <map>
#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/device/network_control.h"
#include "sandbox/hardware/ports.h"

namespace sandbox {

// What is sent on one of them reaches the one it is joined to, if any, as long as both have a
// carrier. The kernel lets ethtool(8) set their speed and duplex.
class TapPorts : public Ports {
  public:
    static bool ToBeHad();

    void Make(const Port& port) override;
    void Remove(const Port& port) override;
    void SetCarrier(const Port& port, bool carrier) override;
    std::vector<pollfd> Frames() const override;
    void Carry(const pollfd& ready) override;

    // Until one of the two is removed. A port that is not there is joined to nothing.
    void Join(const Port& port, TapPorts& others, const Port& other);

  private:
    struct Tap {
        Tap() = default;
        Tap(const Tap&) = delete;
        Tap& operator=(const Tap&) = delete;
        ~Tap() { Part(); }
        void Part();

        velk::UniqueFd fd;
        bool carrier = false;
        Tap* far_end = nullptr;
    };

    NetworkControl control_;
    std::map<std::string, Tap> taps_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_TAP_PORTS_H_
