// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_client.h - the DHCP client of an interface, and its lease.
#ifndef VELKCTL_FILES_DHCP_CLIENT_H_
#define VELKCTL_FILES_DHCP_CLIENT_H_

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/files/text_file.h"

namespace velkctl {

struct Lease {
    std::string address;
    std::optional<time_t> expiry{};  // nothing if it never expires

    // Returns "192.168.0.109 until 2026-11-22 09:51:00 UTC".
    std::string Text() const;
};

struct DhcpClient {
    bool is_running = false;
    int process_id = 0;            // one of those that run; 0: none
    std::string lease_file{};      // its own
    bool is_lease_known = false;   // false if its lease file cannot be read
    std::optional<Lease> lease{};  // nothing if it has none, or it has expired
};

// Looks for a process of the DHCP client that has the interface among its arguments, and reads the
// lease files of all clients: each serves every interface that its configuration names.
DhcpClient ReadDhcpClient(const std::string& interface);

// True if this command line, with a NUL after each word, is the client's for the interface.
bool IsDhcpClientFor(std::string_view command_line, std::string_view interface);

// Returns the lease file of the client with this command line.
std::string LeaseFileOf(std::string_view command_line, std::string_view interface);

// Returns the last lease of the interface in the lines of a lease file; nothing if it has none or
// it has expired by `now`.
std::optional<Lease> LeaseIn(const Lines& lines, std::string_view interface, time_t now);

}  // namespace velkctl

#endif  // VELKCTL_FILES_DHCP_CLIENT_H_
