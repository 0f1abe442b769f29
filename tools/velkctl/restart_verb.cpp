// restart_verb.cpp - the verb that restarts an interface.
#include <optional>
#include <string>

#include "velkctl/device.h"
#include "velkctl/patience.h"
#include "velkctl/verbs.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kNotifyOnly = 2;  // first data byte of a restart of eth1

}  // namespace

ExitStatus RunRestart(const Invocation& invocation, Report& report) {
    const std::optional<Patience> patience = PatienceOf(invocation, report);
    if (!patience) {
        return ExitStatus::kInvalid;
    }
    const std::string& interface = invocation.words.front();
    if (interface != VELK_WIRED_INTERFACE && interface != VELK_WIRELESS_INTERFACE) {
        return report.Refuse("restart: " + invocation.Shown(interface) +
                             " is not an interface of the device; give eth0 or eth1");
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
    if (!answer.ok()) {
        report.Complain(Problem{DescribeFailure(interface + ": could not be restarted", answer),
                                {},
                                answer.known_result()});
    }
    report.Member("interface", interface);
    return StatusOf(answer);
}

}  // namespace velkctl
