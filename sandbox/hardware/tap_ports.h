// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tap_ports.h - tap interfaces: a descriptor of this process is the other end of the cable.
#ifndef SANDBOX_HARDWARE_TAP_PORTS_H_
#define SANDBOX_HARDWARE_TAP_PORTS_H_

#include <map>
#include <string>

#include "lib/base/unique_fd.h"
#include "sandbox/device/network_control.h"
#include "sandbox/hardware/ports.h"

namespace sandbox {

// A frame sent on one interface reaches the connected one if both have a carrier. ethtool(8) can
// set speed and duplex of tap interfaces.
class TapPorts : public Ports {
  public:
    static bool IsAvailable();

    void Make(const Port& port) override;
    void Remove(const Port& port) override;
    void SetCarrier(const Port& port, bool carrier) override;
    std::vector<pollfd> PollFds() const override;
    void ForwardFrame(const pollfd& ready) override;

    // Connects two ports until one of them is removed. Does nothing if one does not exist.
    void Connect(const Port& port, TapPorts& others, const Port& other);

  private:
    struct Tap {
        Tap() = default;
        Tap(const Tap&) = delete;
        Tap& operator=(const Tap&) = delete;
        ~Tap() { Disconnect(); }
        void Disconnect();

        velk::UniqueFd fd;
        bool carrier = false;
        Tap* far_end = nullptr;
    };

    NetworkControl control_;
    std::map<std::string, Tap> taps_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_TAP_PORTS_H_
