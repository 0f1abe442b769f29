// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// machine.h - texts of the kernel and of libc that differ between machines.
#ifndef TESTS_SUPPORT_MACHINE_H_
#define TESTS_SUPPORT_MACHINE_H_

#include <bit>
#include <cstdint>
#include <string>

namespace testkit {

// The number of an error in a line of the log, "errno=98". MIPS has its own numbers for many
// errors.
inline std::string ErrnoText(int error) {
    return "errno=" + std::to_string(error);
}

// The bytes of a number in the daemon's records.
inline std::string ShortBytes(uint16_t value) {
    return {reinterpret_cast<const char*>(&value), sizeof(value)};
}

// The gateway in a line of the routing table, for the text of a machine that stores the lowest byte
// first. The kernel prints the number that the bytes of an address make on its machine.
inline std::string RouteNumber(const std::string& text) {
    constexpr size_t kDigits = 8;
    const size_t begin = text.starts_with("0x") || text.starts_with("0X") ? 2 : 0;
    if (std::endian::native == std::endian::little || text.size() != begin + kDigits) {
        return text;
    }
    std::string number = text.substr(0, begin);
    for (size_t at = text.size(); at > begin; at -= 2) {
        number += text.substr(at - 2, 2);
    }
    return number;
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_MACHINE_H_
