// ports.cpp - chooses the kind of interfaces that the device gets.
#include "sandbox/hardware/ports.h"

#include "sandbox/hardware/tap_ports.h"
#include "sandbox/hardware/veth_ports.h"

namespace sandbox {

bool PortsKeepSpeed() {
    return TapPorts::ToBeHad();
}

std::unique_ptr<Ports> ChoosePorts() {
    if (TapPorts::ToBeHad()) {
        return std::make_unique<TapPorts>();
    }
    return std::make_unique<VethPorts>();
}

}  // namespace sandbox
