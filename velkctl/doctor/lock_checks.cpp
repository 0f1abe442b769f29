// lock_checks.cpp - whether settings can be changed now, or who keeps them from it.
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

constexpr mode_t kLockMode = 0666;
constexpr mode_t kModeBits = 07777;

// What every finding has in common.
Finding About() {
    return {.subject = "settings", .effect = "cannot be changed", .file = velk::kLockFile};
}

Findings CheckAccess(const struct stat& facts) {
    Finding finding = About();
    finding.remedy = std::string("chmod 666 ") + velk::kLockFile;
    if (faccessat(AT_FDCWD, velk::kLockFile, R_OK | W_OK, AT_EACCESS) == -1) {
        finding.what = "this user may not open the lock file";
        return {finding};
    }
    if ((facts.st_mode & kModeBits) != kLockMode) {
        finding.severity = Severity::kWarning;
        finding.effect = "cannot be changed by every user";
        finding.what = "the lock file's mode is not 666";
        return {finding};
    }
    return {};
}

// In a folder that all share, a file's owner may remove it. Two programs then lock two files.
Findings CheckOwner(const struct stat& facts) {
    if (facts.st_uid == 0) {
        return {};
    }
    Finding finding = About();
    finding.severity = Severity::kWarning;
    finding.effect = "can be changed by two programs at once";
    finding.what = "the lock file belongs to user " + std::to_string(facts.st_uid) +
                   ", who can remove it while it is locked and make it anew";
    finding.remedy = std::string("chown -h root ") + velk::kLockFile +
                     ", and have an init script make it at boot, as root and with mode 666, before "
                     "programs of other users run";
    return {finding};
}

}  // namespace

Findings CheckLock() {
    struct stat facts {};
    if (lstat(velk::kLockFile, &facts) == -1) {
        return {};  // made by the first set
    }
    if (S_ISLNK(facts.st_mode) || S_ISDIR(facts.st_mode)) {
        Finding finding = About();
        finding.what = KindOf(facts.st_mode) + " stands where the lock file is made";
        finding.remedy = RemovalOf(velk::kLockFile, facts);
        return {finding};
    }
    Findings findings = CheckAccess(facts);
    Append(findings, CheckOwner(facts));
    if (const std::string holder = LockHolderInWords(); !holder.empty()) {
        Finding finding = About();
        finding.severity = Severity::kWarning;
        finding.effect = "cannot be changed now";
        finding.what = "the lock is held by " + holder;
        finding.remedy = "wait for it, as 'velkctl set --wait' does, or end it";
        findings.push_back(finding);
    }
    return findings;
}

}  // namespace velkctl
