// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interface_restart.cpp - restarts an interface and checks that it is up with its address.
#include "velkctl/changes/interface_restart.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "velkctl/call/answer.h"
#include "velkctl/changes/restart_result.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

using Milliseconds = std::chrono::milliseconds;

// With several interfaces on DHCP, ifup ends at the first lease; this one may be a little later.
constexpr int kLeaseSeconds = 5;
constexpr Milliseconds kLeasePause{100};

// Adds the likely reason for a restart without effect: a tool that is missing. Returns false if
// none is found. The library ignores the tools' exit status, so its success proves nothing.
bool AddReason(Problem& problem) {
    const Findings obstacles = CheckRestartTools();
    if (CountOf(obstacles, Severity::kProblem) == 0) {
        return false;
    }
    AddLikelyCause(problem, obstacles.front());
    return true;
}

AddressSource SourceOf(const std::string& interface, const Device& device) {
    const Answer method = device.Get(SettingOf(VELK_CMD_IP_METHOD, interface));
    if (!method.ok()) {
        return AddressSource::kUnknown;
    }
    return IsStaticMethod(method.data) ? AddressSource::kStatic : AddressSource::kDhcp;
}

std::string ConfiguredAddress(const std::string& interface, const Device& device) {
    const Answer answer = device.Get(SettingOf(VELK_CMD_IP_ADDRESS, interface));
    return answer.ok() ? std::string(answer.data.data()) : "";
}

void AwaitLease(RestartFacts& facts, const TimeLimits& limits) {
    const int seconds = limits.timeout_seconds == 0
                            ? kLeaseSeconds
                            : std::min(limits.timeout_seconds, kLeaseSeconds);
    Milliseconds left = std::chrono::seconds(seconds);
    while (!facts.state.has_address() && left > Milliseconds::zero()) {
        std::this_thread::sleep_for(kLeasePause);
        left -= kLeasePause;
        facts.state = ReadInterfaceState(facts.interface);
    }
}

RestartFacts FactsAfter(const std::string& interface, const Answer& answer,
                        const TimeLimits& limits, const Device& device) {
    RestartFacts facts{interface, ReadInterfaceState(interface), SourceOf(interface, device)};
    facts.is_cable_in = ReadInterfaceState(VELK_WIRED_INTERFACE).has_link;
    facts.tool_output = answer.tool_output;
    if (facts.source == AddressSource::kStatic) {
        facts.configured = ConfiguredAddress(interface, device);
        facts.left_client = ReadDhcpClient(interface).process_id;
    }
    if (MayGetLease(facts)) {
        AwaitLease(facts, limits);
    }
    return facts;
}

RestartResult Judge(const RestartFacts& facts) {
    Problem without_tools{facts.interface +
                          ": the library reported success, but it did not come up"};
    return AddReason(without_tools)
               ? RestartResult{.is_as_configured = false, .problem = std::move(without_tools)}
               : JudgeRestart(facts);
}

}  // namespace

RestartOutcome RestartInterface(const std::string& interface, const TimeLimits& limits,
                                const Device& device) {
    const Answer answer = device.Restart(interface, {});
    if (!answer.ok()) {
        return {.status = StatusOf(answer),
                .problem = ProblemOf(interface + ": could not be restarted", "", answer)};
    }
    const RestartFacts facts = FactsAfter(interface, answer, limits, device);
    const RestartResult result = Judge(facts);
    RestartOutcome outcome{.line = result.line, .state = StateInJson(facts)};
    if (!result.is_as_configured) {
        outcome.status = ExitStatus::kNotHeld;
        outcome.problem = result.problem;
    }
    return outcome;
}

}  // namespace velkctl
