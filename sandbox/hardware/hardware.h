// hardware.h - the device's cable and adapter, and the router around it.
#ifndef SANDBOX_HARDWARE_HARDWARE_H_
#define SANDBOX_HARDWARE_HARDWARE_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

#include "sandbox/hardware/ports.h"
#include "sandbox/hardware/router.h"
#include "sandbox/hardware/usb_devices.h"
#include "sandbox/hardware/wireless_daemon.h"

namespace sandbox {

struct HardwareOptions {
    std::string program_folder;  // where the wireless daemon is looked for
    std::string router_folder;   // of the router's configuration; empty: there is none to be had
    bool router_in = false;      // at the start, as cable and adapter are
    bool sets_address = true;    // of eth0, at the start; otherwise the device's own tools do that
};

class Hardware {
  public:
    explicit Hardware(HardwareOptions options)
        : options_(std::move(options)), daemon_(options_.program_folder + "/wland") {}

    // Plugs in what is in at the start. Returns what does not work in one line, or an empty text.
    std::string Start();
    // Moves a part, as in "cable out". Throws Failure.
    void Obey(const std::string& order);

    // What to wait for so as not to let sent frames pile up, and what then carries them away.
    std::vector<pollfd> Frames() const;
    void Carry(const pollfd& ready);

  private:
    void MakePorts();
    std::string StartDaemon() const;
    void MoveCable(bool in);
    void PullAdapter();
    void PlugAdapter();
    void MoveRouter(bool in);
    void JoinRouter();

    HardwareOptions options_;
    std::unique_ptr<Ports> ports_;  // none when there are no interfaces to be had
    UsbDevices usb_;
    WirelessDaemon daemon_;
    bool adapter_in_ = true;
    std::unique_ptr<Router> router_;  // none while it is out
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_HARDWARE_H_
