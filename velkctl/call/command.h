// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command.h - a command of the library.
#ifndef VELKCTL_CALL_COMMAND_H_
#define VELKCTL_CALL_COMMAND_H_

#include <cstdint>
#include <string_view>

#include "velk/request.h"

namespace velkctl {

struct Command {
    velk_command_type type;
    uint32_t id;
    std::string_view interface;  // at most VELK_INTERFACE_SIZE bytes
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_COMMAND_H_
