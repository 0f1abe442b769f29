// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// doctor_verb.cpp - the verb that finds problems that keep the library from working.
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

Findings WithoutRemedies(Findings findings) {
    for (Finding& finding : findings) {
        finding.remedy.clear();
    }
    return findings;
}

}  // namespace

ExitStatus RunDoctor(const Invocation& /*invocation*/, Report& report) {
    const std::string other_machine = DescribeOtherMachine();
    if (!other_machine.empty()) {
        report.Text(WrappedAt80(other_machine, 0) + "\n");
    }
    const Findings findings = ExamineDevice(report);
    // On another machine, a remedy such as mkdir would change that machine.
    const bool is_device = other_machine.empty();
    report.Text(FormatFindings(is_device ? findings : WithoutRemedies(findings)) +
                Summary(findings) + "\n");
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back(FindingInJson(finding));
    }
    const size_t problems = CountOf(findings, Severity::kProblem);
    report.Member("device", is_device);
    report.Member("findings", std::move(list));
    report.Member("problems", problems);
    report.Member("warnings", findings.size() - problems);
    return problems == 0 ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace velkctl
