// leftovers_checks.cpp - what lies where the library makes edit copies and reads tools' output.
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velk.h"
#include "velkctl/device_files.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/file_facts.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/places.h"

namespace velkctl {
namespace {

constexpr mode_t kShared = S_ISVTX | S_IWOTH;

// What the size of an edit copy says about how far the edit came.
std::string SizeBeside(const DeviceFile& edited, const struct stat& copy) {
    if (copy.st_size == 0) {
        return ", empty";
    }
    struct stat target {};
    const bool is_shorter = stat(edited.path, &target) == 0 && copy.st_size < target.st_size;
    return is_shorter ? ", shorter than the file" : "";
}

// What the library would have done next.
std::string FinishingOf(const DeviceFile& edited, const std::string& path) {
    const std::string target = edited.path;
    return "diff " + target + " " + path + "; cat " + path + " > " + target + " && rm " + path;
}

// An edit copy that is there, or what is in its place. A set removes it first.
Finding JudgeCopy(const DeviceFile& edited, const std::string& path, const struct stat& facts) {
    Finding finding{.subject = std::string(edited.subject),
                    .effect = "cannot be set",
                    .file = path,
                    .remedy = RemovalOf(path, facts),
                    .concerns = ConcernsOf(edited.holds),
                    .hinders = Hinders::kSetting};
    if (S_ISDIR(facts.st_mode)) {
        finding.what = "a folder stands where the edit copy is made";
        return finding;
    }
    if (!MayRemove(path, facts)) {
        finding.what = KindOf(facts.st_mode) + " of another user, " + AgeOf(facts) +
                       " old, that this one may not remove, stands where the edit copy is made";
        return finding;
    }
    finding.severity = Severity::kWarning;
    finding.hinders = Hinders::kNothing;
    if (!S_ISREG(facts.st_mode)) {
        finding.effect = "can still be set";
        finding.what =
            KindOf(facts.st_mode) + " stands where the edit copy is made; the next set replaces it";
        return finding;
    }
    finding.effect = "may not have been set";
    finding.what = "an edit copy was left behind, " + AgeOf(facts) + " old" +
                   SizeBeside(edited, facts) + "; the next set replaces it";
    if (facts.st_size > 0) {
        finding.remedy += ", or finish the edit, if it is whole: " + FinishingOf(edited, path);
    }
    return finding;
}

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

Findings CheckEditCopies() {
    Findings findings;
    for (const DeviceFile& file : DeviceFiles()) {
        const std::string path = EditCopyOf(file.path);
        struct stat facts {};
        if (file.change == Change::kByEdit && lstat(path.c_str(), &facts) == 0) {
            findings.push_back(JudgeCopy(file, path, facts));
        }
    }
    return findings;
}

Findings CheckResultFile() {
    struct stat facts {};
    return lstat(kResultFile, &facts) == 0 ? Findings{JudgeResult(facts)} : Findings{};
}

}  // namespace velkctl
