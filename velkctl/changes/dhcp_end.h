// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_end.h - ends the DHCP client of an interface before it gets another method.
#ifndef VELKCTL_CHANGES_DHCP_END_H_
#define VELKCTL_CHANGES_DHCP_END_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/report/report.h"

namespace velkctl {

// True if the method of the interface is dhcp and a client runs for it.
bool HasDhcpClient(const std::string& interface, const Device& device);

// Takes the interface down, which ends its client. To be called while the configuration still has
// the method dhcp: after a set of the method, ifdown reads static, and leaves the client running.
// Such a client later gives the interface its lease again, or takes the address and route away.
// Returns the problem if a client still runs.
std::optional<Problem> EndDhcpClient(const std::string& interface);

// Ends the clients of the interfaces that the change has restarted with the method dhcp, before it
// is taken back and restarts them with the method static. Reports clients that still run. Returns
// the interfaces that it has taken down.
std::vector<std::string> EndClientsOf(const JournalEntry& entry, const Device& device,
                                      Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_DHCP_END_H_
