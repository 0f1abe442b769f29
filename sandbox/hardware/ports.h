// ports.h - the device's interfaces, as seen from the far end of their cables.
#ifndef SANDBOX_HARDWARE_PORTS_H_
#define SANDBOX_HARDWARE_PORTS_H_

#include <memory>
#include <vector>

#include <poll.h>

namespace sandbox {

struct Port {
    const char* name;
    const char* cable;
    unsigned char last_byte;  // of its hardware address
};

inline constexpr Port kWiredPort = {"eth0", "cable0", 0x10};
inline constexpr Port kWirelessPort = {"eth1", "cable1", 0x11};

// The far ends of these two, on the router.
inline constexpr Port kRouterWiredPort = {"r0", "", 0x01};
inline constexpr Port kRouterWirelessPort = {"r1", "", 0x02};

// Interfaces of one kind. They go with the device's network. Failing throws Failure.
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

    // What to wait for so as not to let sent frames pile up, and what then carries them away.
    virtual std::vector<pollfd> Frames() const { return {}; }
    virtual void Carry(const pollfd& /*ready*/) {}
};

// True when this user may make interfaces that keep a speed and a duplex, as ethtool(8) sets them.
bool PortsKeepSpeed();

// The best kind of interfaces to be had, none made yet. Call it in the device's network.
std::unique_ptr<Ports> ChoosePorts();

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_PORTS_H_
