// orders.h - how orders reach the hardware process.
#ifndef SANDBOX_CONTROL_ORDERS_H_
#define SANDBOX_CONTROL_ORDERS_H_

#include <functional>
#include <string>

#include "lib/base/unique_fd.h"

namespace sandbox {

// The end that takes orders: at a socket under /run, for those on the device, and at the device's
// door, for those outside. A device has one.
class HardwareChannel {
  public:
    explicit HardwareChannel(velk::UniqueFd door);

    int inside() const { return inside_.get(); }  // both are readable when there is an order
    int outside() const { return door_.get(); }
    // Takes one order from one of these and answers it, with the message of the Failure that `obey`
    // throws if it does.
    void Answer(int listener, const std::function<void(const std::string&)>& obey) const;

  private:
    velk::UniqueFd inside_;
    velk::UniqueFd door_;
};

// True when this process is on a device, whose hardware then takes its orders.
bool IsOnDevice();

// Gives an order and waits until it is obeyed: to the device this process is on, or to the one of
// that name, or to the only one that is running. Throws Failure.
void GiveOrder(const std::string& order, const std::string& name);

// Asks a device for its first process, as a pidfd. Throws Failure, also for a process that this
// user may not enter.
velk::UniqueFd AskForFirstProcess(const std::string& name);

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_ORDERS_H_
