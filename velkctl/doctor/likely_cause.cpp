// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// likely_cause.cpp - the reason why a setting does not hold the value that was set.
#include "velkctl/doctor/likely_cause.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "velkctl/doctor/checks.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

// Returns the findings that keep the setting from being read or set, the likeliest first.
Findings FindingsAgainst(const Setting& setting, std::string_view value = {}) {
    Findings found = ExamineFor(setting, value);
    Append(found, CheckDaemonRuns(setting));
    std::erase_if(found, [](const Finding& finding) { return finding.impact == Impact::kNothing; });
    std::ranges::stable_sort(found, {}, [](const Finding& finding) {
        return std::tuple(finding.severity, finding.line == 0);
    });
    return found;
}

// Returns the first finding of this impact after a plain failure; nothing if there is none.
std::optional<Finding> CauseOf(const Setting& setting, const Answer& answer,
                               bool (*hinders)(Impact impact)) {
    if (answer.known_result() != LIB_VELK_FAILURE) {
        return std::nullopt;
    }
    const Findings found = FindingsAgainst(setting);
    const auto cause = std::ranges::find_if(found, hinders, &Finding::impact);
    return cause == found.end() ? std::nullopt : std::optional(*cause);
}

Problem ProblemWithCause(std::string message, const Setting& setting, const Answer& answer,
                         bool (*hinders)(Impact impact)) {
    Problem problem = ProblemOf(std::move(message), setting.name(), answer);
    if (const std::optional<Finding> cause = CauseOf(setting, answer, hinders)) {
        AddLikelyCause(problem, *cause);
    }
    return problem;
}

}  // namespace

Findings LikelyCauses(const Setting& setting, std::string_view value) {
    Findings causes = FindingsAgainst(setting, value);
    if (causes.empty()) {
        Append(causes, ValueLineOf(setting));
        Append(causes, DaemonDiffers(setting));
    }
    return causes;
}

Findings Hindrances(const Setting& setting, std::string_view value) {
    Findings found = FindingsAgainst(setting, value);
    std::erase_if(found, [](const Finding& finding) {
        return finding.severity != Severity::kProblem || !HindersSetting(finding.impact);
    });
    return found;
}

void AddLikelyCause(Problem& problem, const Finding& cause) {
    const std::string location = LocationOf(cause);
    const std::string found =
        location.empty() ? cause.subject + " " + cause.effect : location + ": " + cause.description;
    problem.detail.append(problem.detail.empty() ? "" : "; ");
    problem.detail.append("likely cause: ").append(Printable(found));
    problem.remedy = Printable(cause.remedy);
    problem.file = Printable(cause.file);
    problem.line = cause.line;
}

std::optional<Finding> LikelyCauseOfGet(const Setting& setting, const Answer& answer) {
    return CauseOf(setting, answer, HindersReading);
}

ExitStatus StatusWithCause(const Setting& setting, const Answer& answer) {
    const bool has_no_adapter = answer.known_result() == LIB_VELK_FAILURE &&
                                Includes(WirelessConfiguration(), setting) && DaemonLacksAdapter();
    return has_no_adapter ? ExitStatus::kNoAdapter : StatusOf(answer);
}

Problem ProblemOfGet(std::string message, const Setting& setting, const Answer& answer) {
    return ProblemWithCause(std::move(message), setting, answer, HindersReading);
}

Problem ProblemOfSet(std::string message, const Setting& setting, const Answer& answer) {
    return ProblemWithCause(std::move(message), setting, answer, HindersSetting);
}

}  // namespace velkctl
