// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usb_devices.h - adds and removes the wireless adapter in the list of USB devices.
#ifndef SANDBOX_HARDWARE_USB_DEVICES_H_
#define SANDBOX_HARDWARE_USB_DEVICES_H_

#include <string>

namespace sandbox {

// Removes the wireless adapter's paragraph from /proc/bus/usb/devices and restores it. Does nothing
// if the adapter is not in the list, or not removed.
class UsbDevices {
  public:
    void RemoveAdapter();
    void RestoreAdapter();

  private:
    std::string adapter_;  // the removed paragraph
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_USB_DEVICES_H_
