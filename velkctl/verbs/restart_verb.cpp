// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restart_verb.cpp - the verb that restarts an interface.
#include <string>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/changes/interface_restart.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/unrecorded_change.h"
#include "velkctl/preview/preview_report.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

ExitStatus Notify(const std::string& interface, const Device& device, Report& report) {
    Data data{};
    data[0] = VELK_RESTART_NOTIFY_ONLY;
    const Answer answer = device.Restart(interface, data);
    report.Member("interface", interface);
    if (!answer.ok()) {
        report.Complain(ProblemOf(interface + ": could not be restarted", "", answer));
    }
    return StatusOf(answer);
}

ExitStatus RestartWhole(const std::string& interface, const TimeLimits& limits,
                        const Device& device, Report& report) {
    const RestartOutcome outcome = RestartInterface(interface, limits, device);
    report.Member("interface", interface);
    if (!outcome.state.is_null()) {
        report.Member("state", outcome.state);
    }
    if (outcome.problem) {
        report.Complain(*outcome.problem);
    } else {
        report.Inform(outcome.line + "\n");
    }
    return outcome.status;
}

// Restarts the interface in a private copy alone.
ExitStatus TryRestart(const std::string& interface, const Invocation& invocation, Report& report) {
    Data data{};
    if (invocation.notify_only) {
        data[0] = VELK_RESTART_NOTIFY_ONLY;
    }
    const std::vector<TrialStep> steps{{VELK_RESTART, VELK_CMD_RESTART, interface, data}};
    return ReportTrial(RunTrial(steps, invocation.limits), steps, report);
}

}  // namespace

ExitStatus RunRestart(const Invocation& invocation, Report& report) {
    const std::string& interface = invocation.words.front();
    if (invocation.notify_only && interface != VELK_WIRELESS_INTERFACE) {
        return report.Refuse("restart: --notify-only is for eth1; leave it out for " + interface);
    }
    if (invocation.dry_run) {
        return TryRestart(interface, invocation, report);
    }
    const UnrecordedChange change("restart", invocation.limits.wait_seconds, report);
    if (change.is_refused()) {
        return change.refusal();
    }
    if (const std::string id = FindInterrupted(); !id.empty()) {
        report.Note(InterruptedProblem(id));
    }
    const Device device(invocation.limits, report);
    return invocation.notify_only ? Notify(interface, device, report)
                                  : RestartWhole(interface, invocation.limits, device, report);
}

}  // namespace velkctl
