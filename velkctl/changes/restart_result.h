// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restart_result.h - whether a restarted interface is up with its address.
#ifndef VELKCTL_CHANGES_RESTART_RESULT_H_
#define VELKCTL_CHANGES_RESTART_RESULT_H_

#include <string>
#include <vector>

#include "velkctl/files/interface_state.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The source of an interface's address, as configured.
enum class AddressSource {
    kUnknown,  // neither static nor DHCP, or no stanza
    kStatic,
    kDhcp,
};

// The facts about an interface after its restart.
struct RestartFacts {
    std::string interface;
    InterfaceState state{};
    AddressSource source = AddressSource::kUnknown;
    std::string configured{};  // the static address; empty: unknown
    bool is_cable_in = false;  // in eth0; then eth1 comes up without an address
    int left_client = 0;       // with method static, a DHCP client of the interface; 0: none runs
    std::string repeat{};      // the last step of a fix; empty: another restart
    std::vector<std::string> tool_output{};  // from ifdown, ifup and the DHCP client
};

struct RestartResult {
    bool is_as_configured;
    std::string line{};  // "eth0: 192.168.0.109 from DHCP", if as configured
    Problem problem{};   // otherwise
};

RestartResult JudgeRestart(const RestartFacts& facts);

// True if the interface has no address yet and a DHCP server may still give it one.
bool MayGetLease(const RestartFacts& facts);

// True if the last message of the DHCP client about the interface's lease is that no server
// answered. Those about the other interface, which a restart of eth0 restarts too, do not count.
bool HasNoDhcpAnswer(const RestartFacts& facts);

// {"up": true, "address": "192.168.0.109", "source": "dhcp"}
Json StateInJson(const RestartFacts& facts);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_RESTART_RESULT_H_
