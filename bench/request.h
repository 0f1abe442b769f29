// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request.h - requests to the library, with a check of the result.
#ifndef BENCH_REQUEST_H_
#define BENCH_REQUEST_H_

#include <cstdint>
#include <functional>
#include <string_view>

#include "velk.h"

namespace bench {

// Returns a call that executes a prepared request. It ends the program if the result is not
// `expected`.
std::function<void()> Request(uint32_t type, uint32_t id, std::string_view interface,
                              std::string_view data = {}, int expected = LIB_VELK_SUCCESS);

inline std::function<void()> Get(uint32_t id, std::string_view interface) {
    return Request(VELK_GET, id, interface);
}
inline std::function<void()> Set(uint32_t id, std::string_view interface, std::string_view data) {
    return Request(VELK_SET, id, interface, data);
}

}  // namespace bench

#endif  // BENCH_REQUEST_H_
