// likely_cause.cpp - why a setting does not hold what was set.
#include "velkctl/doctor/likely_cause.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/examination.h"
#include "velkctl/doctor/value_line_checks.h"
#include "velkctl/text/escaping.h"

namespace velkctl {

namespace {

// What is wrong and keeps the setting from being read or set, the likeliest first.
Findings HindrancesOf(const Setting& setting) {
    Findings found = ExamineFor(setting);
    Append(found, CheckDaemonRuns(setting));
    std::erase_if(found,
                  [](const Finding& finding) { return finding.hinders == Hinders::kNothing; });
    std::ranges::stable_sort(found, {}, [](const Finding& finding) {
        return std::tuple(finding.severity, finding.line == 0);
    });
    return found;
}

}  // namespace

Findings CausesOf(const Setting& setting) {
    Findings causes = HindrancesOf(setting);
    if (causes.empty()) {
        // Nothing is wrong with it: what is left is where the value is held.
        Append(causes, ValueLineOf(setting));
        Append(causes, DaemonBehind(setting));
    }
    return causes;
}

void AddLikelyCause(Problem& problem, const Finding& cause) {
    const std::string place = PlaceOf(cause);
    const std::string found =
        place.empty() ? cause.subject + " " + cause.effect : place + ": " + cause.what;
    problem.detail.append(problem.detail.empty() ? "" : "; ");
    problem.detail.append("likely cause: ").append(Printable(found));
    problem.remedy = Printable(cause.remedy);
    problem.file = Printable(cause.file);
    problem.line = cause.line;
}

Problem ProblemWithCause(std::string message, const Setting& setting, const Answer& answer) {
    Problem problem = ProblemOf(std::move(message), setting.name(), answer);
    const Findings causes =
        answer.known_result() == LIB_VELK_FAILURE ? HindrancesOf(setting) : Findings();
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    }
    return problem;
}

}  // namespace velkctl
