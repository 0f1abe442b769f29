// command.h - a command of the library: what a request asks for.
#ifndef VELKCTL_CALL_COMMAND_H_
#define VELKCTL_CALL_COMMAND_H_

#include <cstdint>
#include <string_view>

#include "velk.h"

namespace velkctl {

struct Command {
    velk_command_type type;
    uint32_t id;
    std::string_view interface;  // at most VELK_INTERFACE_SIZE bytes
};

// Commands for the address, netmask or gateway: what is configured while the interface is static,
// what its lease gave while it is not.
constexpr bool IsAddressCommand(uint32_t id) {
    return id == VELK_CMD_IP_ADDRESS || id == VELK_CMD_NETMASK || id == VELK_CMD_GATEWAY;
}

}  // namespace velkctl

#endif  // VELKCTL_CALL_COMMAND_H_
