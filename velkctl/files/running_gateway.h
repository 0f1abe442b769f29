// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// running_gateway.h - the default gateway that the kernel uses.
#ifndef VELKCTL_FILES_RUNNING_GATEWAY_H_
#define VELKCTL_FILES_RUNNING_GATEWAY_H_

#include <string>
#include <string_view>

namespace velkctl {

// Returns the gateway of the interface's default route; empty if it has none.
std::string RunningGateway(const std::string& interface);

// Returns the gateway of this line of the routing table; empty if it is no default route of the
// interface.
std::string GatewayIn(std::string_view line, std::string_view interface);

}  // namespace velkctl

#endif  // VELKCTL_FILES_RUNNING_GATEWAY_H_
