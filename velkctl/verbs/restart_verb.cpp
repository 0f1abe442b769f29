// restart_verb.cpp - the verb that restarts an interface.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/settings/catalogue.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kNotifyOnly = 2;  // first data byte of a restart of eth1

// What ifup(8) says at its end when an interface did not come up.
constexpr std::string_view kIfupFailed = "ifup: failed to bring up ";

// Why the interface was not restarted although the library says so, who does not learn whether the
// tools did what it had them do; empty when nothing speaks against it.
std::string WhyNotRestarted(const Answer& answer) {
    if (const Findings missing = CheckRestartTools(); !missing.empty()) {
        return LikelyCauseText(missing);
    }
    const bool has_failed = std::ranges::any_of(
        answer.said, [](const std::string& line) { return line.starts_with(kIfupFailed); });
    return has_failed ? "; ifup says why" : "";
}

ExitStatus JudgeRestart(const std::string& interface, const Answer& answer, Report& report) {
    const std::string reason = WhyNotRestarted(answer);
    if (reason.empty()) {
        return ExitStatus::kDone;
    }
    report.Complain(interface +
                    ": the library reported success, but the interface did not come up" + reason);
    return ExitStatus::kNotHeld;
}

}  // namespace

ExitStatus RunRestart(const Invocation& invocation, Report& report) {
    const std::optional<Patience> patience = PatienceOf(invocation, report);
    if (!patience) {
        return ExitStatus::kInvalid;
    }
    const std::string& interface = invocation.words.front();
    if (interface != VELK_WIRED_INTERFACE && interface != VELK_WIRELESS_INTERFACE) {
        return report.Refuse("restart: " +
                             UnknownInterface(interface, invocation.Shown(interface)));
    }
    Data data{};
    if (invocation.notify_only) {
        if (interface != VELK_WIRELESS_INTERFACE) {
            return report.Refuse("restart: --notify-only is for eth1; leave it out for " +
                                 interface);
        }
        data[0] = kNotifyOnly;
    }
    const Answer answer =
        Device(*patience, report)
            .Execute({VELK_RESTART, VELK_CMD_RESTART, interface}, data, "restart of " + interface);
    report.Member("interface", interface);
    if (!answer.ok()) {
        report.Complain(Problem{DescribeFailure(interface + ": could not be restarted", answer),
                                {},
                                answer.known_result()});
        return StatusOf(answer);
    }
    return invocation.notify_only ? ExitStatus::kDone : JudgeRestart(interface, answer, report);
}

}  // namespace velkctl
