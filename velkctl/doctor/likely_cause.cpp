// likely_cause.cpp - why a setting does not hold what was set.
#include "velkctl/doctor/likely_cause.h"

#include <algorithm>
#include <tuple>

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

std::string CauseInWords(const Finding& cause) {
    const std::string place = PlaceOf(cause);
    const std::string found =
        place.empty() ? cause.subject + " " + cause.effect : place + ": " + cause.what;
    return Printable(found).append("; mend: ").append(Printable(cause.remedy));
}

std::string DescribeFailure(std::string_view what, const Setting& setting, const Answer& answer) {
    const Findings causes =
        answer.known_result() == LIB_VELK_FAILURE ? HindrancesOf(setting) : Findings();
    if (causes.empty()) {
        return DescribeFailure(what, answer);
    }
    return std::string(what).append(" (LIB_VELK_FAILURE, -1); likely cause: ") +
           CauseInWords(causes.front());
}

}  // namespace velkctl
