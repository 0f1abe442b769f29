// restart_verb.cpp - the verb that restarts an interface.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/settings/catalogue.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The last message of ifup(8) if the interface did not come up.
constexpr std::string_view kIfupFailed = "ifup: failed to bring up ";

// Adds the likely reason for a restart without effect. Returns false if none is found. The library
// ignores the tools' exit status, so its success proves nothing.
bool AddReason(const Answer& answer, Problem& problem) {
    const Findings obstacles = CheckRestartTools();
    if (CountOf(obstacles, Severity::kProblem) > 0) {
        AddLikelyCause(problem, obstacles.front());
        return true;
    }
    if (std::ranges::any_of(answer.tool_output, [](const std::string& line) {
            return line.starts_with(kIfupFailed);
        })) {
        problem.detail = "ifup failed, see its messages";
        return true;
    }
    return false;
}

ExitStatus CheckRestart(const std::string& interface, const Answer& answer, Report& report) {
    Problem problem{interface + ": the library reported success, but it did not come up"};
    if (!AddReason(answer, problem)) {
        return ExitStatus::kDone;
    }
    report.Complain(problem);
    return ExitStatus::kNotHeld;
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
    const Answer answer =
        Device(invocation.limits, report)
            .Execute({VELK_RESTART, VELK_CMD_RESTART, interface}, data, "restart of " + interface);
    report.Member("interface", interface);
    if (!answer.ok()) {
        report.Complain(ProblemOf(interface + ": could not be restarted", "", answer));
        return StatusOf(answer);
    }
    return invocation.notify_only ? ExitStatus::kDone : CheckRestart(interface, answer, report);
}

}  // namespace velkctl
