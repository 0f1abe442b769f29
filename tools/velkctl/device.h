// device.h - the one way from velkctl to the device: a command of the library.
#ifndef VELKCTL_DEVICE_H_
#define VELKCTL_DEVICE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/data.h"

namespace velkctl {

struct Command {
    velk_command_type type;
    uint32_t id;
    std::string_view interface;  // at most VELK_INTERFACE_SIZE bytes
};

struct Answer {
    int result;
    Data data;
    bool timed_out = false;  // nothing came in time; the result says nothing
    std::string remark{};    // what more there is to say about a failure

    std::optional<int> known_result() const {
        return timed_out ? std::nullopt : std::optional(result);
    }
};

// Runs the command with these data bytes.
Answer Execute(const Command& command, const Data& data = {});

}  // namespace velkctl

#endif  // VELKCTL_DEVICE_H_
