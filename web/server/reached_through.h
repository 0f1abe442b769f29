// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reached_through.h - the interface over which a browser reaches the device.
#ifndef WEB_SERVER_REACHED_THROUGH_H_
#define WEB_SERVER_REACHED_THROUGH_H_

#include <string>

namespace velkweb {

// Returns "eth0" or "eth1" if the device answers a browser at this address over it, else an empty
// text. Sends nothing.
std::string InterfaceTo(const std::string& address);

// Returns the name of the device.
std::string HostName();

}  // namespace velkweb

#endif  // WEB_SERVER_REACHED_THROUGH_H_
