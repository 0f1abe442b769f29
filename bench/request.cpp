// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request.cpp - requests to the library, with a check of the result.
#include "bench/request.h"

#include <string>

#include "bench/floor.h"

namespace bench {

std::function<void()> Request(uint32_t type, uint32_t id, std::string_view interface,
                              std::string_view data, int expected) {
    _velk_request request{};
    interface.copy(request.interface, sizeof(request.interface));
    request.command_type = type;
    request.command_id = id;
    data.copy(request.data, sizeof(request.data));
    return [request, expected] {
        _velk_request response;
        const int result = execute_velk_command(&request, &response);
        if (result != expected) {
            GiveUp("command " + std::to_string(request.command_id) + " says " +
                   std::to_string(result));
        }
    };
}

}  // namespace bench
