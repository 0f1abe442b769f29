// likely_cause.cpp - the reason why a setting does not hold the value that was set.
#include "velkctl/doctor/likely_cause.h"

#include <algorithm>
#include <tuple>

#include "velkctl/doctor/checks.h"
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

std::string LikelyCauseText(const Findings& causes) {
    if (causes.empty()) {
        return "";
    }
    const Finding& cause = causes.front();
    const std::string location = LocationOf(cause);
    const std::string found =
        location.empty() ? cause.subject + " " + cause.effect : location + ": " + cause.description;
    return "; likely cause: " + Printable(found) + "; fix: " + Printable(cause.remedy);
}

std::string DescribeFailureAndCause(std::string_view failure, const Setting& setting,
                                    const Answer& answer) {
    const Findings causes =
        answer.known_result() == LIB_VELK_FAILURE ? FindingsAgainst(setting) : Findings();
    return causes.empty()
               ? DescribeFailure(failure, answer)
               : std::string(failure) + " (LIB_VELK_FAILURE, -1)" + LikelyCauseText(causes);
}

}  // namespace velkctl
