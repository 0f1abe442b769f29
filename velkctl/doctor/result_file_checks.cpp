// result_file_checks.cpp - what lies where the library reads the output of tools.
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"

namespace velkctl {
namespace {

bool IsOwnFile(const struct stat& facts) {
    return S_ISREG(facts.st_mode) && facts.st_nlink == 1 && facts.st_uid == geteuid();
}

// A file of the caller's own is written again by the next reading. Anything else is removed by it,
// where the caller may; where not, nothing is read.
Finding JudgeResult(const struct stat& facts) {
    Finding finding{.severity = Severity::kWarning,
                    .subject = "link-speed and the address and netmask of a lease",
                    .effect = "may not have been read",
                    .file = velk::kResultFile,
                    .remedy = RemovalOf(velk::kResultFile, facts),
                    .concerns = {{.id = VELK_CMD_LINK_SPEED},
                                 {.id = VELK_CMD_IP_ADDRESS},
                                 {.id = VELK_CMD_NETMASK}},
                    .hinders = Hinders::kNothing};
    if (IsOwnFile(facts)) {
        finding.what =
            "a result was left behind, " + AgeOf(facts) + " old; the next one overwrites it";
        return finding;
    }
    finding.what = KindOf(facts.st_mode) + " stands where tools write their output";
    if (MayRemove(velk::kResultFile, facts)) {
        finding.what += "; the next reading removes it";
        return finding;
    }
    finding.severity = Severity::kProblem;
    finding.effect = "cannot be read";
    finding.hinders = Hinders::kReading;
    return finding;
}

}  // namespace

Findings CheckResultFile() {
    struct stat facts {};
    return lstat(velk::kResultFile, &facts) == 0 ? Findings{JudgeResult(facts)} : Findings{};
}

}  // namespace velkctl
