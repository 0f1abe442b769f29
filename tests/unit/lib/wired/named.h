// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// named.h - the argument of an ioctl(2) of a network interface.
#ifndef TESTS_UNIT_LIB_WIRED_NAMED_H_
#define TESTS_UNIT_LIB_WIRED_NAMED_H_

#include <string>

#include <net/if.h>

namespace testkit {

inline ifreq Named(const std::string& name) {
    ifreq ifr{};
    name.copy(ifr.ifr_name, sizeof(ifr.ifr_name));
    return ifr;
}

}  // namespace testkit

#endif  // TESTS_UNIT_LIB_WIRED_NAMED_H_
