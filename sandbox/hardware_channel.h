// hardware_channel.h - how orders reach the hardware process.
#ifndef SANDBOX_HARDWARE_CHANNEL_H_
#define SANDBOX_HARDWARE_CHANNEL_H_

#include <functional>
#include <string>

#include "frame/unique_fd.h"

namespace sandbox {

// The end that takes orders, at a socket under /run. A device has one.
class HardwareChannel {
  public:
    HardwareChannel();

    int fd() const { return listener_.get(); }  // readable when there is an order
    // Takes one order and answers it, with the message of the Failure that `obey` throws if it
    // does.
    void Answer(const std::function<void(const std::string&)>& obey) const;

  private:
    velk::UniqueFd listener_;
};

// Gives an order and waits until it is obeyed. Throws Failure.
void GiveOrder(const std::string& order);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_CHANNEL_H_
