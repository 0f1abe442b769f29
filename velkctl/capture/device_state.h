// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_state.h - the state of a device that is in no file: links, addresses, processes, tools.
#ifndef VELKCTL_CAPTURE_DEVICE_STATE_H_
#define VELKCTL_CAPTURE_DEVICE_STATE_H_

#include <string>
#include <string_view>

#include "velkctl/capture/capture.h"

namespace velkctl {

// Adds the outputs of ifconfig and ethtool and the kernel's routes. Returns lines about interfaces,
// sockets, DHCP clients, tools and missing folders. docs/sandbox.md describes them.
std::string AddDeviceState(Capture& capture);

// Returns the output of ifconfig without the lines that change all the time and that nobody reads.
std::string WithoutCounters(std::string_view output);

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_DEVICE_STATE_H_
