// query_checks.cpp - what lies where a query meets the wireless daemon.
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/unix_socket.h"

namespace velkctl {
namespace {

Finding At(const char* path, const struct stat& facts) {
    return {.subject = "wireless settings",
            .effect = "can be neither read nor set",
            .file = path,
            .remedy = RemovalOf(path, facts),
            .concerns = WirelessSettings(),
            .hinders = Hinders::kSetting};
}

// A warning instead, about what the next query does away with.
Finding LeftBehind(Finding finding, const std::string& what) {
    finding.severity = Severity::kWarning;
    finding.effect = "may not have been read";
    finding.what = what;
    finding.hinders = Hinders::kNothing;
    return finding;
}

// A reply socket that no process has bound.
Finding JudgeReplySocket(const struct stat& facts) {
    Finding finding = At(velk::kReplySocket, facts);
    if (S_ISDIR(facts.st_mode)) {
        finding.what = "a folder stands where the reply socket is made";
        return finding;
    }
    if (!MayRemove(velk::kReplySocket, facts)) {
        finding.what = KindOf(facts.st_mode) +
                       " of another user, that this one may not remove, stands where the reply "
                       "socket is made";
        return finding;
    }
    return LeftBehind(finding, "a reply socket that nobody listens at was left behind, " +
                                   AgeOf(facts) + " old; the next query replaces it");
}

Finding JudgeSemaphore(const struct stat& facts) {
    Finding finding = At(velk::kSemaphoreFile, facts);
    if (!S_ISREG(facts.st_mode)) {
        finding.what = KindOf(facts.st_mode) + " stands where the semaphore is made";
        return finding;
    }
    if (facts.st_size == 0) {
        finding.effect = "end the program that reads them";  // by SIGBUS
        finding.what = "an empty file stands where the semaphore is made";
        return finding;
    }
    if (faccessat(AT_FDCWD, velk::kSemaphoreFile, R_OK | W_OK, AT_EACCESS) == -1) {
        finding.what = "a semaphore of another user, " + AgeOf(facts) + " old, is in the way";
        return finding;
    }
    return LeftBehind(finding, "a semaphore was left behind, " + AgeOf(facts) +
                                   " old; the next query may be answered before it listens");
}

}  // namespace

Findings CheckQueryRemains() {
    if (IsBound(velk::kReplySocket)) {
        return {};  // a query is under way
    }
    Findings findings;
    struct stat facts {};
    if (lstat(velk::kReplySocket, &facts) == 0) {
        findings.push_back(JudgeReplySocket(facts));
    }
    if (lstat(velk::kSemaphoreFile, &facts) == 0) {
        findings.push_back(JudgeSemaphore(facts));
    }
    return findings;
}

}  // namespace velkctl
