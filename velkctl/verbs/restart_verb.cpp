// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restart_verb.cpp - the verb that restarts an interface.
#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/verbs/restart_result.h"
#include <nlohmann/json.hpp>

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
    }
    if (MayGetLease(facts)) {
        AwaitLease(facts, limits);
    }
    return facts;
}

ExitStatus NotUp(const Problem& problem, Report& report) {
    report.Complain(problem);
    return ExitStatus::kNotHeld;
}

ExitStatus CheckRestart(const RestartFacts& facts, Report& report) {
    report.Member("state", StateInJson(facts));
    Problem without_tools{facts.interface +
                          ": the library reported success, but it did not come up"};
    if (AddReason(without_tools)) {
        return NotUp(without_tools, report);
    }
    const RestartResult result = JudgeRestart(facts);
    if (!result.is_as_configured) {
        return NotUp(result.problem, report);
    }
    report.Inform(result.line + "\n");
    return ExitStatus::kDone;
}

}  // namespace

ExitStatus RunRestart(const Invocation& invocation, Report& report) {
    const std::string& interface = invocation.words.front();
    Data data{};
    if (invocation.notify_only) {
        if (interface != VELK_WIRELESS_INTERFACE) {
            return report.Refuse("restart: --notify-only is for eth1; leave it out for " +
                                 interface);
        }
        data[0] = VELK_RESTART_NOTIFY_ONLY;
    }
    const Device device(invocation.limits, report);
    const Answer answer = device.Restart(interface, data);
    report.Member("interface", interface);
    if (!answer.ok()) {
        report.Complain(ProblemOf(interface + ": could not be restarted", "", answer));
        return StatusOf(answer);
    }
    if (invocation.notify_only) {
        return ExitStatus::kDone;
    }
    return CheckRestart(FactsAfter(interface, answer, invocation.limits, device), report);
}

}  // namespace velkctl
