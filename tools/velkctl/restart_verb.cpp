// restart_verb.cpp - the verb that restarts an interface.
#include <optional>
#include <string>

#include "velkctl/catalogue.h"
#include "velkctl/causes.h"
#include "velkctl/device.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/patience.h"
#include "velkctl/verbs.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kNotifyOnly = 2;  // first data byte of a restart of eth1

// The library does not learn whether the tools did what it had them do.
ExitStatus JudgeRestart(const std::string& interface, Report& report) {
    const Findings obstacles = RestartObstacles();
    if (CountOf(obstacles, Severity::kProblem) == 0) {
        return ExitStatus::kDone;
    }
    report.Complain(interface +
                    ": the library reported success, but the interface was not restarted; likely "
                    "cause: " +
                    CauseInWords(obstacles.front()));
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
    return invocation.notify_only ? ExitStatus::kDone : JudgeRestart(interface, report);
}

}  // namespace velkctl
