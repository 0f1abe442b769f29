// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hardware.h - the cable, adapter and router of a device.
#ifndef SANDBOX_HARDWARE_HARDWARE_H_
#define SANDBOX_HARDWARE_HARDWARE_H_

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

#include "sandbox/device/network_control.h"
#include "sandbox/device/recorded_state.h"
#include "sandbox/hardware/ports.h"
#include "sandbox/hardware/router.h"
#include "sandbox/hardware/usb_devices.h"
#include "sandbox/hardware/wireless_daemon.h"

namespace sandbox {

struct HardwareOptions {
    std::string program_folder;  // holds the wireless daemon
    std::string router_folder;   // the router's configuration; empty: no router
    bool router_in = false;      // at the start
    bool sets_address =
        true;  // sets the address of eth0 at the start; if false, the device's tools do
    std::optional<RecordedState> state{};  // if the device was captured
    bool has_wireless_record = false;      // the daemon answers from kWirelessRecord
};

class Hardware {
  public:
    explicit Hardware(HardwareOptions options)
        : options_(std::move(options)),
          daemon_(options_.program_folder + "/wland", DaemonArguments(options_)),
          adapter_in_(HasAdapter(options_)) {}

    // Makes the ports and starts the daemon and the router. Returns one line of problems, or an
    // empty text.
    std::string Start();
    // Executes an order such as "cable out". Throws Failure.
    void Execute(const std::string& order);

    // Returns the descriptors to poll for sent frames. ForwardFrame() takes one that is ready.
    std::vector<pollfd> PollFds() const;
    void ForwardFrame(const pollfd& ready);

  private:
    static std::vector<std::string> DaemonArguments(const HardwareOptions& options);
    static bool HasAdapter(const HardwareOptions& options);
    const RecordedState* recorded() const { return options_.state ? &*options_.state : nullptr; }
    void MakePorts();
    void MakeNetwork(const NetworkControl& device);
    std::string StartDaemon() const;
    void PullAdapter();
    void PlugAdapter();
    void MoveRouter(bool in);
    void ConnectRouter();

    HardwareOptions options_;
    std::unique_ptr<Ports> ports_;  // null if no interfaces can be made
    UsbDevices usb_;
    WirelessDaemon daemon_;
    bool adapter_in_;
    std::unique_ptr<Router> router_;  // null while the router is out
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_HARDWARE_H_
