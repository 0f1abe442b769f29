// result_file_checks.cpp - what lies where the library reads the output of tools.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/file_facts.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/places.h"

namespace velkctl {
namespace {

constexpr mode_t kShared = S_ISVTX | S_IWOTH;

// Where everybody may write, the kernel may keep even root from opening another user's file as one
// to be made, as a shell does.
bool IsProtected(const struct stat& facts) {
    struct stat folder {};
    if (stat(kEditFolder, &folder) == -1 || (folder.st_mode & kShared) != kShared) {
        return false;
    }
    const TextFile level = ReadTextFile("/proc/sys/fs/protected_regular");
    const bool is_on = level.bytes.starts_with('1') || level.bytes.starts_with('2');
    return is_on && facts.st_uid != geteuid() && facts.st_uid != folder.st_uid;
}

// The output of a tool that is there, or what is in its place. A shell writes into it.
Finding JudgeResult(const struct stat& facts) {
    Finding finding{.subject = "link-speed and the address and netmask of a lease",
                    .effect = "cannot be read",
                    .file = kResultFile,
                    .remedy = RemovalOf(kResultFile, facts),
                    .concerns = {{.id = VELK_CMD_LINK_SPEED},
                                 {.id = VELK_CMD_IP_ADDRESS},
                                 {.id = VELK_CMD_NETMASK}},
                    .hinders = Hinders::kReading};
    if (!S_ISREG(facts.st_mode)) {
        finding.what = KindOf(facts.st_mode) + " stands where tools write their output";
        if (S_ISFIFO(facts.st_mode)) {
            finding.effect = "wait for ever when read";
        } else if (S_ISLNK(facts.st_mode)) {
            finding.effect = "overwrite another file when read";
            finding.hinders = Hinders::kNothing;
        }
        return finding;
    }
    if (faccessat(AT_FDCWD, kResultFile, W_OK, AT_EACCESS) == -1 || IsProtected(facts)) {
        finding.effect = "are read from an old result";
        finding.what = "another user's, " + AgeOf(facts) + " old, is in the way";
        return finding;
    }
    finding.severity = Severity::kWarning;
    finding.effect = "may not have been read";
    finding.what = "a result was left behind, " + AgeOf(facts) + " old; the next one overwrites it";
    finding.hinders = Hinders::kNothing;
    return finding;
}

}  // namespace

Findings CheckResultFile() {
    struct stat facts {};
    return lstat(kResultFile, &facts) == 0 ? Findings{JudgeResult(facts)} : Findings{};
}

}  // namespace velkctl
