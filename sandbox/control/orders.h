// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// orders.h - orders to the hardware process of a device.
#ifndef SANDBOX_CONTROL_ORDERS_H_
#define SANDBOX_CONTROL_ORDERS_H_

#include <functional>
#include <string>

#include "lib/base/unique_fd.h"

namespace sandbox {

// The receiving end of orders: a socket under /run for processes on the device, and the control
// socket for processes outside. A device has one.
class OrderSocket {
  public:
    explicit OrderSocket(velk::UniqueFd control_socket);

    // Both descriptors are readable if an order arrived.
    int inside() const { return inside_.get(); }
    int outside() const { return control_socket_.get(); }
    // Receives one order from one of the two descriptors, executes it and sends the result.
    void Answer(int listener, const std::function<void(const std::string&)>& execute) const;

  private:
    velk::UniqueFd inside_;
    velk::UniqueFd control_socket_;
};

// True if this process is on a device.
bool IsOnDevice();

// Returns the name of the device that this process is on, or an empty text.
std::string ThisDevice();

// Sends an order to the device of that name and waits for the result. An empty name means the
// device of this process, or the only running one. Throws Failure.
void SendOrder(const std::string& order, const std::string& name);

// Requests the first process of a device, as a pidfd. Throws Failure, also if this user must not
// enter that process.
velk::UniqueFd RequestFirstProcess(const std::string& name);

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_ORDERS_H_
