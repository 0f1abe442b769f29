// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// switch.h - the states of the functions that comment lines out and in.
#ifndef TESTS_UNIT_LIB_DHCP_SWITCH_H_
#define TESTS_UNIT_LIB_DHCP_SWITCH_H_

namespace testkit {

inline constexpr bool kOn = true;
inline constexpr bool kOff = false;

}  // namespace testkit

#endif  // TESTS_UNIT_LIB_DHCP_SWITCH_H_
