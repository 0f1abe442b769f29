// likely_cause.cpp - the reason why a setting does not hold the value that was set.
#include "velkctl/doctor/likely_cause.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/examination.h"
#include "velkctl/text/escaping.h"

namespace velkctl {

namespace {

// Returns the findings that keep the setting from being read or set, the likeliest first.
Findings FindingsAgainst(const Setting& setting) {
    Findings found = ExamineFor(setting);
    Append(found, CheckDaemonRuns(setting));
    std::erase_if(found, [](const Finding& finding) { return finding.impact == Impact::kNothing; });
    std::ranges::stable_sort(found, {}, [](const Finding& finding) {
        return std::tuple(finding.severity, finding.line == 0);
    });
    return found;
}

}  // namespace

Findings LikelyCauses(const Setting& setting) {
    Findings causes = FindingsAgainst(setting);
    if (causes.empty()) {
        Append(causes, ValueLineOf(setting));
        Append(causes, DaemonDiffers(setting));
    }
    return causes;
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

Problem ProblemWithCause(std::string message, const Setting& setting, const Answer& answer) {
    Problem problem = ProblemOf(std::move(message), setting.name(), answer);
    const Findings causes =
        answer.known_result() == LIB_VELK_FAILURE ? FindingsAgainst(setting) : Findings();
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    }
    return problem;
}

}  // namespace velkctl
