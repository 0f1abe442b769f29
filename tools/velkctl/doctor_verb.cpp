// doctor_verb.cpp - the verb that looks for what the library will not be able to do.
#include <array>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/verbs.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// In the order in which they are shown. What a command of the library would clear away is looked at
// before the daemon is asked with one.
constexpr std::array<Findings (*)(), 14> kChecks{
    CheckFolders,      CheckFiles,     CheckInterfaces, CheckExitHooks,  CheckDhcpConfig,
    CheckClientScript, CheckTimeEntry, CheckWebUpdate,  CheckIdentity,   CheckTools,
    CheckIfconfig,     CheckLock,      CheckEditCopies, CheckResultFile,
};

Findings Examine(Report& report) {
    Findings findings;
    for (const auto check : kChecks) {
        Append(findings, check());
    }
    Append(findings, CheckQueryRemains());
    Append(findings, CheckDaemon(report));
    return findings;
}

}  // namespace

ExitStatus RunDoctor(const Invocation& /*invocation*/, Report& report) {
    const Findings findings = Examine(report);
    report.Text(FindingsInWords(findings) + Summary(findings) + "\n");
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back(FindingInJson(finding));
    }
    const size_t problems = CountOf(findings, Severity::kProblem);
    report.Member("findings", std::move(list));
    report.Member("problems", problems);
    report.Member("warnings", findings.size() - problems);
    return problems == 0 ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace velkctl
