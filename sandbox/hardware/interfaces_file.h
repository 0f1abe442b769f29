// interfaces_file.h - the addresses that /etc/network/interfaces gives.
#ifndef SANDBOX_HARDWARE_INTERFACES_FILE_H_
#define SANDBOX_HARDWARE_INTERFACES_FILE_H_

#include <optional>
#include <string>

#include "sandbox/device/network_control.h"

namespace sandbox {

// The static IPv4 address of an interface; nothing when it has none, or not as address and netmask.
std::optional<StaticAddress> ReadStaticAddress(const std::string& interface);

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_INTERFACES_FILE_H_
