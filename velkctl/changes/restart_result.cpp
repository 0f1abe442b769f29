// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restart_result.cpp - whether a restarted interface is up with its address.
#include "velkctl/changes/restart_result.h"

#include <algorithm>
#include <string_view>

#include "velk/request.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The messages of ifup(8) if it did not bring an interface up, before its name.
constexpr std::string_view kIfupFailed = "ifup: failed to bring up ";
constexpr std::string_view kIfupUnknown = "ifup: unknown interface ";
// The messages of the DHCP client: no server answered, and a lease.
constexpr std::string_view kNoOffer = "No DHCPOFFERS received";
constexpr std::string_view kBound = "bound to ";
// The client names an interface in its message about a socket, and in those about a packet:
// "Listening on LPF/eth0/02:00:00:00:00:01", "DHCPDISCOVER on eth0 to 255.255.255.255".
constexpr std::string_view kSocketOf = " LPF/";
constexpr std::string_view kPacket = "DHCP";
constexpr std::string_view kPacketOn = " on ";
// A client of two interfaces requests two leases at a time, so its message about a lease belongs to
// the interface of the request: "DHCPREQUEST for 192.168.0.109 on eth0 to 255.255.255.255".
constexpr std::string_view kRequest = "DHCPREQUEST for ";

RestartResult UpResult(const RestartFacts& facts, const std::string& text) {
    return {.is_as_configured = true, .line = facts.interface + ": " + text};
}

RestartResult FailedResult(const RestartFacts& facts, const std::string& message,
                           std::string detail, std::string remedy = "") {
    Problem problem{facts.interface + ": " + message};
    problem.detail = std::move(detail);
    problem.remedy = std::move(remedy);
    return {.is_as_configured = false, .problem = std::move(problem)};
}

std::string RunAgain(const RestartFacts& facts) {
    return facts.repeat.empty() ? "run 'velkctl restart " + facts.interface + "' again"
                                : facts.repeat;
}

// The library brings eth1 up without an address while the cable is in.
bool LeavesWithoutAddress(const RestartFacts& facts) {
    return facts.interface == VELK_WIRELESS_INTERFACE && facts.is_cable_in;
}

bool HasIfupFailed(const RestartFacts& facts) {
    return std::ranges::any_of(facts.tool_output, [&](std::string_view line) {
        return line == std::string(kIfupFailed) + facts.interface ||
               line == std::string(kIfupUnknown) + facts.interface;
    });
}

std::string_view WordAfter(std::string_view line, std::string_view before, std::string_view ends) {
    const size_t at = line.find(before);
    if (at == std::string_view::npos) {
        return {};
    }
    line.remove_prefix(at + before.size());
    return line.substr(0, line.find_first_of(ends));
}

// Returns the interface that a line of the DHCP client names; empty if it names none.
std::string_view InterfaceIn(std::string_view line) {
    const std::string_view of_socket = WordAfter(line, kSocketOf, "/ ");
    if (!of_socket.empty() || !line.starts_with(kPacket)) {
        return of_socket;
    }
    return WordAfter(line, kPacketOn, " ");
}

// True if the client got this lease, even if it has named the other interface since.
bool IsBoundTo(const RestartFacts& facts, const std::string& address) {
    return std::ranges::any_of(facts.tool_output, [&](std::string_view line) {
        return WordAfter(line, kBound, " ") == address;
    });
}

std::string Described(const InterfaceState& state) {
    if (!state.is_up) {
        return "the interface is down";
    }
    return state.has_address() ? "the interface is up with " + state.address()
                               : "the interface is up without an address";
}

RestartResult JudgeWithoutAddress(const RestartFacts& facts) {
    const std::string message = "up, but it has no address";
    if (!facts.state.has_link) {
        const bool is_wireless = facts.interface == VELK_WIRELESS_INTERFACE;
        return FailedResult(
            facts, message,
            is_wireless ? "no link to an access point" : "no link: the cable is out",
            (is_wireless ? "check 'velkctl show eth1', then " : "plug the cable in, then ") +
                RunAgain(facts));
    }
    if (facts.source == AddressSource::kStatic) {
        return FailedResult(facts, message, "its configured address is " + facts.configured,
                            "'velkctl doctor' looks for the cause");
    }
    return FailedResult(facts, message, "no DHCP server answered",
                        "start one, then " + RunAgain(facts));
}

// If no server answered, the address is an earlier one, or one that APIPA chose.
RestartResult JudgeDhcp(const RestartFacts& facts) {
    const std::string address = facts.state.address();
    if (IsLinkLocal(address)) {
        return UpResult(facts, address + ", link-local: no DHCP server answered");
    }
    if (!IsBoundTo(facts, address) && HasNoDhcpAnswer(facts)) {
        return FailedResult(facts, "up, but its address " + address + " is not from DHCP",
                            "no DHCP server answered", "start one, then " + RunAgain(facts));
    }
    return UpResult(facts, address + " from DHCP");
}

std::string OtherAddresses(const RestartFacts& facts) {
    std::string others;
    for (const InterfaceAddress& own : facts.state.addresses) {
        if (own.address != facts.configured) {
            others.append(others.empty() ? ", also " : " ").append(own.address);
        }
    }
    return others;
}

// The client of a method before keeps its lease up to date: it gives the interface its address
// again and, when the lease ends, takes the configured one away.
RestartResult JudgeLeftClient(const RestartFacts& facts) {
    const std::string process = std::to_string(facts.left_client);
    return FailedResult(facts, "up, but a DHCP client still runs for it",
                        "process " + process + " may replace the configured address later",
                        "'sudo kill " + process + "', then " + RunAgain(facts));
}

RestartResult JudgeStatic(const RestartFacts& facts) {
    if (facts.left_client != 0) {
        return JudgeLeftClient(facts);
    }
    if (!facts.state.Has(facts.configured)) {
        return FailedResult(facts, "up, but its address is " + facts.state.address(),
                            facts.configured.empty()
                                ? "its configured address cannot be read"
                                : "its configured address is " + facts.configured,
                            "'velkctl doctor' looks for the cause");
    }
    return UpResult(facts, facts.configured + " (static)" + OtherAddresses(facts));
}

RestartResult JudgeAddress(const RestartFacts& facts) {
    switch (facts.source) {
        case AddressSource::kDhcp:
            return JudgeDhcp(facts);
        case AddressSource::kStatic:
            return JudgeStatic(facts);
        default:
            return UpResult(facts, facts.state.address());
    }
}

}  // namespace

RestartResult JudgeRestart(const RestartFacts& facts) {
    if (HasIfupFailed(facts)) {
        return FailedResult(facts, "ifup failed", Described(facts.state));
    }
    if (!facts.state.is_up) {
        return FailedResult(facts, "not up after the restart",
                            facts.state.exists ? "" : "the kernel has no such interface",
                            "'velkctl doctor' looks for the cause");
    }
    if (facts.state.has_address()) {
        return JudgeAddress(facts);
    }
    if (LeavesWithoutAddress(facts)) {
        return UpResult(facts, "up, without an address while the cable is in");
    }
    if (facts.source == AddressSource::kUnknown) {
        return UpResult(facts, "up, without an address: neither static nor DHCP");
    }
    return JudgeWithoutAddress(facts);
}

bool MayGetLease(const RestartFacts& facts) {
    return facts.source == AddressSource::kDhcp && facts.state.has_link &&
           !facts.state.has_address() && !HasNoDhcpAnswer(facts) && !LeavesWithoutAddress(facts);
}

bool HasNoDhcpAnswer(const RestartFacts& facts) {
    bool is_own = false;
    bool has_no_answer = false;
    std::string_view requested;  // the last address that the client requested for the interface
    for (const std::string& line : facts.tool_output) {
        if (const std::string_view named = InterfaceIn(line); !named.empty()) {
            is_own = named == facts.interface;
            requested =
                is_own && line.starts_with(kRequest) ? WordAfter(line, kRequest, " ") : requested;
        } else if (is_own && line.starts_with(kNoOffer)) {
            has_no_answer = true;
        } else if (line.starts_with(kBound) && WordAfter(line, kBound, " ") == requested) {
            has_no_answer = false;
        }
    }
    return has_no_answer;
}

Json StateInJson(const RestartFacts& facts) {
    Json state;
    state["up"] = facts.state.is_up;
    state["address"] = facts.state.has_address() ? Json(facts.state.address()) : Json(nullptr);
    state["source"] = nullptr;
    if (facts.source != AddressSource::kUnknown) {
        state["source"] = facts.source == AddressSource::kDhcp ? "dhcp" : "static";
    }
    return state;
}

}  // namespace velkctl
