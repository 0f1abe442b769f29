// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// data_bytes.h - the data bytes of a command and the result of parsing them.
#ifndef VELKCTL_TEXT_DATA_BYTES_H_
#define VELKCTL_TEXT_DATA_BYTES_H_

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "velk/request.h"

namespace velkctl {

// Unused bytes are zero.
using Data = std::array<char, VELK_DATA_SIZE>;

// Data bytes, or the problem with the words they come from, with the remedy.
struct Parsed {
    Data data{};
    std::string problem{};
    std::string_view or_force{};  // the end of the problem for a verb that has --force

    bool ok() const { return problem.empty(); }
};

inline Parsed Unparsable(std::string problem, std::string_view or_force = {}) {
    return {{}, std::move(problem), or_force};
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_DATA_BYTES_H_
