// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_client.cpp - the DHCP client of an interface, and its lease.
#include "velkctl/files/dhcp_client.h"

#include <algorithm>
#include <array>
#include <vector>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "velkctl/files/process_list.h"

namespace velkctl {
namespace {

constexpr std::string_view kClient = "dhclient";
constexpr std::string_view kLeaseFileOption = "-lf";
constexpr auto kLeaseFileStart = velk::JoinText(velk::kLeaseFolder, "/dhclient.");
constexpr std::string_view kLeaseFileEnd = ".leases";

std::vector<std::string_view> ArgumentsIn(std::string_view command_line) {
    std::vector<std::string_view> words;
    while (!command_line.empty()) {
        const size_t end = std::min(command_line.find('\0'), command_line.size());
        words.push_back(command_line.substr(0, end));
        command_line.remove_prefix(std::min(end + 1, command_line.size()));
    }
    return words;
}

bool IsDhcpClient(const std::vector<std::string_view>& words) {
    return !words.empty() && words.front().substr(words.front().rfind('/') + 1) == kClient;
}

// A lease without an expiry never expires.
bool EndsBefore(const Lease& one, const Lease& other) {
    return one.expiry && (!other.expiry || *one.expiry < *other.expiry);
}

// A statement of a lease: "fixed-address 192.168.0.109;".
struct Statement {
    std::string name;
    std::string value;
};

Statement StatementIn(std::string_view line) {
    line = Trimmed(line);
    line = line.substr(0, line.find(';'));
    const size_t blank = std::min(line.find(' '), line.size());
    return {std::string(line.substr(0, blank)), std::string(Trimmed(line.substr(blank)))};
}

// Returns the seconds of "0 2026/11/22 09:51:00", the day of the week before the date, or of
// "epoch 1795341060". Nothing for "never".
std::optional<time_t> TimeIn(const std::string& value) {
    tm parts{};
    if (strptime(value.c_str(), "%w %Y/%m/%d %H:%M:%S", &parts) != nullptr) {
        return timegm(&parts);
    }
    if (strptime(value.c_str(), "epoch %s", &parts) != nullptr) {
        return mktime(&parts);
    }
    return std::nullopt;
}

}  // namespace

std::string Lease::Text() const {
    if (!expiry) {
        return address + " for ever";
    }
    constexpr size_t kLongest = 64;
    std::array<char, kLongest> end{};
    tm parts{};
    (void)gmtime_r(&*expiry, &parts);
    (void)strftime(end.data(), end.size(), " until %Y-%m-%d %H:%M:%S UTC", &parts);
    return address + end.data();
}

bool IsDhcpClientFor(std::string_view command_line, std::string_view interface) {
    const std::vector<std::string_view> words = ArgumentsIn(command_line);
    return IsDhcpClient(words) && std::ranges::find(words, interface) != words.end();
}

std::string LeaseFileOf(std::string_view command_line, std::string_view interface) {
    const std::vector<std::string_view> words = ArgumentsIn(command_line);
    const auto option = std::ranges::find(words, kLeaseFileOption);
    if (option != words.end() && option + 1 != words.end()) {
        return std::string(*(option + 1));
    }
    return std::string(kLeaseFileStart.c_str()).append(interface).append(kLeaseFileEnd);
}

std::optional<Lease> LeaseIn(const Lines& lines, std::string_view interface, time_t now) {
    const std::string named = '"' + std::string(interface) + '"';
    std::optional<Lease> last;
    bool is_own = false;
    for (const std::string& line : lines) {
        const auto [name, value] = StatementIn(line);
        if (name == "interface") {
            is_own = value == named;
        } else if (is_own && name == "fixed-address") {
            last = Lease{value};
        } else if (is_own && last && name == "expire") {
            last->expiry = TimeIn(value);
        }
    }
    const bool has_expired = last && last->expiry && *last->expiry <= now;
    return has_expired ? std::nullopt : last;
}

DhcpClient ReadDhcpClient(const std::string& interface) {
    const time_t now = time(nullptr);
    DhcpClient client;
    for (const Process& process : ListProcesses()) {
        const std::string command_line = CommandLineOf(process.id);
        if (!IsDhcpClient(ArgumentsIn(command_line))) {
            continue;
        }
        const std::string lease_file = LeaseFileOf(command_line, interface);
        const TextFile file = ReadTextFile(lease_file);
        if (IsDhcpClientFor(command_line, interface)) {
            client.is_running = true;
            client.process_id = process.id;
            client.lease_file = lease_file;
            client.is_lease_known |= file.state == FileState::kText;
        }
        const std::optional<Lease> lease = LeaseIn(file.lines, interface, now);
        if (lease && (!client.lease || EndsBefore(*client.lease, *lease))) {
            client.lease = lease;
        }
    }
    return client;
}

}  // namespace velkctl
