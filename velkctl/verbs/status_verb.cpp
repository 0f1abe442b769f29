// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// status_verb.cpp - the verb that shows the configuration beside the running state.
#include <algorithm>
#include <string>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/output.h"
#include "velkctl/report/report.h"
#include "velkctl/text/columns.h"
#include "velkctl/verbs/device_states.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

Json RowInJson(const PartState& state) {
    Json object;
    object["name"] = state.name;
    object["configured"] = TextOrNull(state.configured);
    object["running"] = TextOrNull(state.running);
    object["differs"] = state.differs;
    return object;
}

std::string Row(const PartState& state) {
    constexpr size_t kName = 18;
    constexpr size_t kValue = 17;
    const std::string configured = state.configured.empty() ? "-" : state.configured;
    return Padded(state.name, kName) + Padded(configured, kValue) +
           (state.differs ? Padded(state.running + " ", kValue) + "differs" : state.running) + "\n";
}

}  // namespace

ExitStatus RunStatus(const Invocation& invocation, Report& report) {
    if (const std::string other_machine = DescribeOtherMachine(); !other_machine.empty()) {
        report.Text(WrappedAt80(other_machine, 0) + "\n");
    }
    const Device device(invocation.limits, report);
    const PartStates states =
        ReadStates(invocation.words.empty() ? "" : invocation.words.front(), device);
    report.Text(FittedToTerminal(Row({"name", "configured", "running"})));
    Json list = Json::array();
    for (const PartState& state : states) {
        report.Text(FittedToTerminal(Row(state)));
        list.push_back(RowInJson(state));
    }
    const bool differs = std::ranges::any_of(states, &PartState::differs);
    report.Member("states", std::move(list));
    return differs ? ExitStatus::kFailed : ExitStatus::kDone;
}

}  // namespace velkctl
