// usb_devices.h - the adapter's paragraph in the list of attached USB devices.
#ifndef SANDBOX_HARDWARE_USB_DEVICES_H_
#define SANDBOX_HARDWARE_USB_DEVICES_H_

#include <string>

namespace sandbox {

// Takes the wireless adapter out of /proc/bus/usb/devices, and puts it back as it was. A list that
// shows no adapter, or none to put back, stays as it is.
class UsbDevices {
  public:
    void TakeOutAdapter();
    void PutInAdapter();

  private:
    std::string adapter_;  // while it is out
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_USB_DEVICES_H_
