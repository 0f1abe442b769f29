// lock_checks.cpp - whether settings can be changed now, or who keeps them from it.
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velkctl/doctor/age.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/lock_holder.h"
#include "velkctl/places.h"

namespace velkctl {
namespace {

constexpr mode_t kLockMode = 0666;
constexpr mode_t kModeBits = 07777;

// Who holds the lock; empty when nobody does.
std::string Holder(const struct stat& facts) {
    const TextFile locks = ReadTextFile("/proc/locks");
    const std::optional<int> process = FlockHolder(locks.bytes, facts.st_dev, facts.st_ino);
    if (!process) {
        return "";
    }
    const std::optional<LockHolder> holder = FindLockHolder();
    if (!holder) {
        return "a process that process " + std::to_string(*process) + " started before it ended";
    }
    return "process " + std::to_string(holder->process) + " (" + holder->name +
           "), which was started " + InWords(holder->seconds) + " ago";
}

Finding FindingOn(Severity severity, std::string effect, std::string what, std::string remedy) {
    return {severity,  "settings", std::move(effect), std::move(what),
            kLockFile, 0,          std::move(remedy)};
}

Findings CheckAccess(const struct stat& facts) {
    const std::string remedy = std::string("chmod 666 ") + kLockFile;
    if (faccessat(AT_FDCWD, kLockFile, R_OK | W_OK, AT_EACCESS) == -1) {
        return {FindingOn(Severity::kProblem, "cannot be changed",
                          "this user may not open the lock file", remedy)};
    }
    if ((facts.st_mode & kModeBits) != kLockMode) {
        return {FindingOn(Severity::kWarning, "cannot be changed by every user",
                          "the lock file's mode is not 666", remedy)};
    }
    return {};
}

}  // namespace

Findings CheckLock() {
    struct stat facts {};
    if (lstat(kLockFile, &facts) == -1) {
        return {};  // made by the first set
    }
    if (S_ISLNK(facts.st_mode) || S_ISDIR(facts.st_mode)) {
        return {FindingOn(Severity::kProblem, "cannot be changed",
                          KindOf(facts.st_mode) + " stands where the lock file is made",
                          std::string("rm -r ") + kLockFile)};
    }
    Findings findings = CheckAccess(facts);
    if (const std::string holder = Holder(facts); !holder.empty()) {
        findings.push_back(FindingOn(Severity::kWarning, "cannot be changed now",
                                     "the lock is held by " + holder,
                                     "wait for it, as 'velkctl set --wait' does, or end it"));
    }
    return findings;
}

}  // namespace velkctl
