// hardware.cpp - the device's cable and adapter, which a process of their own holds.
#include "sandbox/hardware.h"

#include <cerrno>
#include <fstream>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "frame/unique_fd.h"
#include "sandbox/failure.h"
#include "sandbox/hardware_channel.h"
#include "sandbox/interfaces_file.h"
#include "sandbox/ports.h"
#include "sandbox/usb_devices.h"
#include "sandbox/wireless_daemon.h"

namespace sandbox {
namespace {

// Where ifupdown(8) notes what it has brought up.
constexpr char kStateOfInterfaces[] = "/run/network/ifstate";
constexpr int kHardwareFailed = 1;

class Hardware {
  public:
    explicit Hardware(const std::string& program_folder) : daemon_(program_folder + "/wland") {}

    // Plugs everything in. Returns what does not work in one line, or an empty text.
    std::string Start();
    // Throws Failure.
    void Obey(const std::string& order);

    Ports* ports() const { return ports_.get(); }

  private:
    void MakePorts();
    std::string StartDaemon() const;
    void MoveCable(bool in);
    void PullAdapter();
    void PlugAdapter();

    std::unique_ptr<Ports> ports_;  // none when there are no interfaces to be had
    UsbDevices usb_;
    WirelessDaemon daemon_;
    bool adapter_in_ = true;
};

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
    if (const auto address = ReadStaticAddress(kWiredPort.name)) {
        device.SetAddress(kWiredPort.name, *address);
        std::ofstream(kStateOfInterfaces) << "lo=lo\neth0=eth0\n";
    }
}

void Hardware::Obey(const std::string& order) {
    if (order == "cable in" || order == "cable out") {
        MoveCable(order == "cable in");
    } else if (order == "adapter in") {
        PlugAdapter();
    } else if (order == "adapter out") {
        PullAdapter();
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
    }
    const std::string trouble = StartDaemon();
    usb_.PutInAdapter();
    adapter_in_ = true;
    if (!trouble.empty()) {
        throw Failure(trouble);
    }
}

void Serve(Hardware& hardware, const HardwareChannel& orders) {
    for (;;) {
        std::vector<pollfd> waiting;
        if (hardware.ports() != nullptr) {
            waiting = hardware.ports()->Frames();
        }
        waiting.push_back({orders.fd(), POLLIN, 0});
        if (poll(waiting.data(), waiting.size(), -1) == -1) {
            continue;
        }
        for (const pollfd& ready : waiting) {
            if (ready.revents == 0) {
                continue;
            }
            if (ready.fd == orders.fd()) {
                orders.Answer([&hardware](const std::string& order) { hardware.Obey(order); });
            } else {
                hardware.ports()->ThrowAway(ready);
            }
        }
    }
}

// It shall neither read what is meant for the command nor be reached by the terminal's keys.
void LeaveTerminal() {
    (void)setsid();
    const velk::UniqueFd nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
    (void)dup2(nothing.get(), STDIN_FILENO);
    (void)dup2(nothing.get(), STDOUT_FILENO);
}

void Report(velk::UniqueFd& report, const std::string& text) {
    (void)!write(report.get(), text.data(), text.size());
    (void)report.Reset();
}

[[noreturn]] void BeHardware(const std::string& program_folder, velk::UniqueFd& report) {
    (void)prctl(PR_SET_NAME, "velk-hardware");
    LeaveTerminal();
    try {
        Hardware hardware(program_folder);
        const HardwareChannel orders;
        Report(report, hardware.Start());
        Serve(hardware, orders);
    } catch (const std::exception& error) {
        Report(report, error.what());
    }
    _exit(kHardwareFailed);
}

std::string ReadReport(const velk::UniqueFd& report) {
    std::string text;
    char part[256];
    for (ssize_t size; (size = read(report.get(), part, sizeof(part))) > 0;) {
        text.append(part, static_cast<size_t>(size));
    }
    return text;
}

}  // namespace

std::string StartHardware(const std::string& program_folder) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    const pid_t hardware = fork();
    if (hardware == -1) {
        Fail("cannot start a process", errno);
    }
    if (hardware == 0) {
        BeHardware(program_folder, write_end);
    }
    (void)write_end.Reset();
    return ReadReport(read_end);
}

void MoveHardware(const std::string& part, const std::string& position) {
    GiveOrder(part + " " + position);
}

}  // namespace sandbox
