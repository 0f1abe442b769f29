// query_checks.cpp - remains of a query to the wireless daemon that hinder the next one.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/unix_socket.h"

namespace velkctl {
namespace {

constexpr std::string_view kUnusable = "can be neither read nor set";
constexpr std::string_view kMaybeUnread = "may not have been read";

Finding AboutRemains(const char* path, const struct stat& facts) {
    return {.subject = "wireless settings",
            .file = path,
            .remedy = RemovalOf(path, facts),
            .affected = WirelessSettings(),
            .impact = Impact::kSetting};
}

// A reply socket that no process has bound.
Finding CheckReplySocket(const struct stat& facts) {
    const Finding about = AboutRemains(velk::kReplySocket, facts);
    if (S_ISDIR(facts.st_mode)) {
        return about.Problem(kUnusable, "a folder is in the place of the reply socket");
    }
    if (!MayRemove(velk::kReplySocket, facts)) {
        return about.Problem(kUnusable, KindOf(facts.st_mode) +
                                            " of another user, that this one may not remove, "
                                            "is in the place of the reply socket");
    }
    return about.With(Impact::kNothing)
        .Warning(kMaybeUnread, "a reply socket without a process was left, " + AgeOf(facts) +
                                   " old; the next query replaces it");
}

Finding CheckSemaphore(const struct stat& facts) {
    const Finding about = AboutRemains(velk::kSemaphoreFile, facts);
    if (!S_ISREG(facts.st_mode)) {
        return about.Problem(kUnusable,
                             KindOf(facts.st_mode) + " is in the place of the semaphore");
    }
    if (facts.st_size == 0) {  // the program ends by SIGBUS
        return about.Problem("end the program that reads them",
                             "an empty file is in the place of the semaphore");
    }
    if (faccessat(AT_FDCWD, velk::kSemaphoreFile, R_OK | W_OK, AT_EACCESS) == -1) {
        return about.Problem(
            kUnusable, "a semaphore of another user, " + AgeOf(facts) + " old, is in the way");
    }
    return about.With(Impact::kNothing)
        .Warning(kMaybeUnread, "a semaphore was left, " + AgeOf(facts) +
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
        findings.push_back(CheckReplySocket(facts));
    }
    if (lstat(velk::kSemaphoreFile, &facts) == 0) {
        findings.push_back(CheckSemaphore(facts));
    }
    return findings;
}

}  // namespace velkctl
