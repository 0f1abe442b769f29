// veth_ports.cpp - interfaces whose cable is another interface, in a network of this process.
#include "sandbox/veth_ports.h"

#include <cerrno>

#include <net/if.h>
#include <sched.h>

#include "sandbox/failure.h"
#include "sandbox/programs.h"

namespace sandbox {
namespace {

// The first process is on the device.
constexpr char kDeviceNetwork[] = "/proc/1/ns/net";

NetworkControl EnterNetworkOfCables() {
    if (unshare(CLONE_NEWNET) == -1) {
        Fail("cannot make a network for the cables", errno);
    }
    return NetworkControl();
}

void RunIp(std::vector<std::string> words) {
    words.insert(words.begin(), {FindProgram("ip"), "link"});
    if (words.front().empty()) {
        throw Failure("ip(8) is not installed, and this user may not make taps");
    }
    if (RunProgram(words) != 0) {
        throw Failure("ip(8) failed");
    }
}

}  // namespace

VethPorts::VethPorts() : cables_(EnterNetworkOfCables()) {
}

void VethPorts::Make(const Port& port) {
    RunIp({"add", port.cable, "type", "veth", "peer", "name", port.name, "netns", kDeviceNetwork});
    device_.SetHardwareAddress(port.name, port.last_byte);
    device_.BringUp(port.name);
    SetCarrier(port, true);
}

void VethPorts::Remove(const Port& port) {
    // Somebody on the device may have deleted the interface, and the cable with it.
    if (if_nametoindex(port.cable) != 0) {
        RunIp({"del", port.cable});
    }
}

void VethPorts::SetCarrier(const Port& port, bool carrier) {
    if (carrier) {
        cables_.BringUp(port.cable);
    } else {
        cables_.BringDown(port.cable);
    }
}

}  // namespace sandbox
