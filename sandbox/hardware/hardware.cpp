// hardware.cpp - the device's cable and adapter, and the router around it.
#include "sandbox/hardware/hardware.h"

#include <fstream>

#include "sandbox/hardware/interfaces_file.h"
#include "sandbox/hardware/tap_ports.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

// Where ifupdown(8) notes what it has brought up.
constexpr char kStateOfInterfaces[] = "/run/network/ifstate";

void SetWiredAddress(const NetworkControl& device) {
    if (const auto address = ReadStaticAddress(kWiredPort.name)) {
        device.SetAddress(kWiredPort.name, *address);
        std::ofstream(kStateOfInterfaces) << "lo=lo\neth0=eth0\n";
    }
}

}  // namespace

std::string Hardware::Start() {
    std::string troubles;
    try {
        MakePorts();
    } catch (const Failure& failure) {
        ports_.reset();
        troubles = std::string("no eth0 and eth1: ") + failure.what();
    }
    const std::string daemon_trouble = StartDaemon();
    const bool both = !troubles.empty() && !daemon_trouble.empty();
    return troubles + (both ? "; " : "") + daemon_trouble;
}

std::string Hardware::StartDaemon() const {
    try {
        daemon_.Start();
        return {};
    } catch (const Failure& failure) {
        return failure.what();
    }
}

void Hardware::MakePorts() {
    const NetworkControl device;
    ports_ = ChoosePorts();
    ports_->Make(kWiredPort);
    ports_->Make(kWirelessPort);
    if (options_.sets_address) {
        SetWiredAddress(device);
    }
    if (options_.router_in) {
        MoveRouter(true);
    }
}

void Hardware::Obey(const std::string& order) {
    if (order == "cable in" || order == "cable out") {
        MoveCable(order == "cable in");
    } else if (order == "adapter in") {
        PlugAdapter();
    } else if (order == "adapter out") {
        PullAdapter();
    } else if (order == "router in" || order == "router out") {
        MoveRouter(order == "router in");
    } else {
        throw Failure("the hardware does not know how to: " + order);
    }
}

void Hardware::MoveCable(bool in) {
    if (ports_ == nullptr) {
        throw Failure("this device has no interfaces, and so no cable");
    }
    ports_->SetCarrier(kWiredPort, in);
}

// The list of devices changes first here and last below: who finds the adapter there finds its
// interface and its daemon, too.
void Hardware::PullAdapter() {
    if (!adapter_in_) {
        return;
    }
    usb_.TakeOutAdapter();
    adapter_in_ = false;
    daemon_.Stop();
    if (ports_ != nullptr) {
        ports_->Remove(kWirelessPort);
    }
}

void Hardware::PlugAdapter() {
    if (adapter_in_) {
        return;
    }
    if (ports_ != nullptr) {
        ports_->Make(kWirelessPort);
        JoinRouter();
    }
    const std::string trouble = StartDaemon();
    usb_.PutInAdapter();
    adapter_in_ = true;
    if (!trouble.empty()) {
        throw Failure(trouble);
    }
}

void Hardware::MoveRouter(bool in) {
    if (options_.router_folder.empty()) {
        throw Failure("this device has no router; one made with --real has");
    }
    if (!in) {
        router_.reset();
    } else if (router_ == nullptr) {
        router_ = std::make_unique<Router>(options_.router_folder);
        JoinRouter();
    }
}

// Only taps lead anywhere.
void Hardware::JoinRouter() {
    auto* const taps = dynamic_cast<TapPorts*>(ports_.get());
    if (router_ != nullptr && taps != nullptr) {
        taps->Join(kWiredPort, router_->ports(), kRouterWiredPort);
        taps->Join(kWirelessPort, router_->ports(), kRouterWirelessPort);
    }
}

std::vector<pollfd> Hardware::Frames() const {
    std::vector<pollfd> frames;
    if (ports_ != nullptr) {
        frames = ports_->Frames();
    }
    if (router_ != nullptr) {
        const std::vector<pollfd> more = router_->ports().Frames();
        frames.insert(frames.end(), more.begin(), more.end());
    }
    return frames;
}

// Both look for the descriptor among their own.
void Hardware::Carry(const pollfd& ready) {
    if (ports_ != nullptr) {
        ports_->Carry(ready);
    }
    if (router_ != nullptr) {
        router_->ports().Carry(ready);
    }
}

}  // namespace sandbox
