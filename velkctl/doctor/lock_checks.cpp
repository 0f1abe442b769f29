// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock_checks.cpp - whether settings can be changed now, and the process that holds the lock.
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

constexpr mode_t kLockMode = 0666;
constexpr mode_t kModeBits = 07777;

Findings CheckAccess(const Finding& about, const struct stat& facts) {
    const std::string remedy = "chmod 666 " + about.file;
    if (faccessat(AT_FDCWD, velk::kLockFile, R_OK | W_OK, AT_EACCESS) == -1) {
        return {about.Because("this user may not open the lock file", remedy)};
    }
    if ((facts.st_mode & kModeBits) != kLockMode) {
        return {about.Warning("cannot be changed by every user", "the lock file's mode is not 666",
                              remedy)};
    }
    return {};
}

// In a folder that all share, a file's owner may remove it. Two programs then lock two files.
Findings CheckOwner(const Finding& about, const struct stat& facts) {
    if (facts.st_uid == 0) {
        return {};
    }
    return {about.Warning("can be changed by two programs at once",
                          "the lock file belongs to user " + std::to_string(facts.st_uid) +
                              "; this user can remove it while it is locked, and make a new one",
                          "chown -h root " + about.file +
                              "; make it at boot by an init script, as root with mode 666")};
}

Findings CheckHolder(const Finding& about) {
    const std::string holder = DescribeLockHolder();
    return holder.empty()
               ? Findings()
               : Findings{about.Warning("cannot be changed now", "the lock is held by " + holder,
                                        "wait for it, as 'velkctl set --wait' does, or end it")};
}

}  // namespace

Findings CheckLock() {
    const Finding about{
        .subject = "settings", .effect = "cannot be changed", .file = velk::kLockFile};
    struct stat facts {};
    if (lstat(velk::kLockFile, &facts) == -1) {
        return {};  // the first set makes it
    }
    if (S_ISLNK(facts.st_mode) || S_ISDIR(facts.st_mode)) {
        return {about.Because(KindOf(facts.st_mode) + " is in the place of the lock file",
                              RemoveCommand(velk::kLockFile, facts))};
    }
    Findings findings = CheckAccess(about, facts);
    Append(findings, CheckOwner(about, facts));
    Append(findings, CheckHolder(about));
    return findings;
}

}  // namespace velkctl
