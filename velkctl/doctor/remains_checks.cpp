// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// remains_checks.cpp - files that a query to the wireless daemon or a tool has left, and that
// hinder the next one.
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/settings/affected_settings.h"

namespace velkctl {
namespace {

constexpr std::string_view kMaybeUnread = "may not have been read";

Finding AboutRemains(const char* path, const struct stat& facts) {
    return About(WirelessSettings(), path, Impact::kBoth)
        .Of(Severity::kProblem, "can be neither read nor set")
        .FixedBy(RemoveCommand(path, facts));
}

// A reply socket that no process has bound.
Finding CheckReplySocket(const Finding& about, const struct stat& facts) {
    if (S_ISDIR(facts.st_mode)) {
        return about.Because("a folder is in the place of the reply socket");
    }
    if (!MayRemove(about.file, facts)) {
        return about.Because(KindOf(facts.st_mode) +
                             " of another user is in the place of the reply socket; "
                             "this user may not remove it");
    }
    return about.With(Impact::kNothing)
        .Warning(kMaybeUnread, "a reply socket without a process was left, " + AgeOf(facts) +
                                   " old; the next query replaces it");
}

Finding CheckSemaphore(const Finding& about, const struct stat& facts) {
    if (!S_ISREG(facts.st_mode)) {
        return about.Because(KindOf(facts.st_mode) + " is in the place of the semaphore");
    }
    if (facts.st_size == 0) {
        Finding ending = about;
        ending.subject = "reading a wireless setting";
        return ending.Problem("ends the program (SIGBUS)",
                              "an empty file is in the place of the semaphore");
    }
    if (faccessat(AT_FDCWD, about.file.c_str(), R_OK | W_OK, AT_EACCESS) == -1) {
        return about.Because("a semaphore of another user is in the way; it is " + AgeOf(facts) +
                             " old");
    }
    return about.With(Impact::kNothing)
        .Warning(kMaybeUnread, "a semaphore was left, " + AgeOf(facts) +
                                   " old; the next query may be answered before it listens");
}

template <typename Check>
Findings CheckRemains(const char* path, Check check) {
    struct stat facts {};
    return lstat(path, &facts) == -1 ? Findings()
                                     : Findings{check(AboutRemains(path, facts), facts)};
}

// The next reading overwrites a file of the caller's own. It removes any other file, if the caller
// may remove it; if not, nothing is read.
Finding CheckResult(const Finding& remains, const struct stat& facts) {
    const Finding about =
        About(SettingsReadWith(), remains.file, Impact::kNothing).FixedBy(remains.remedy);
    if (S_ISREG(facts.st_mode) && facts.st_nlink == 1 && facts.st_uid == geteuid()) {
        return about.Warning(kMaybeUnread, "a result was left, " + AgeOf(facts) +
                                               " old; the next one overwrites it");
    }
    const std::string obstacle = KindOf(facts.st_mode) + " is in the place of the output of tools";
    return MayRemove(about.file, facts)
               ? about.Warning(kMaybeUnread, obstacle + "; the next reading removes it")
               : about.With(Impact::kReading).Problem("cannot be read", obstacle);
}

}  // namespace

Findings CheckResultFile() {
    return CheckRemains(velk::kResultFile, CheckResult);
}

Findings CheckQueryRemains() {
    if (IsBound(velk::kReplySocket)) {
        return {};  // a query is under way
    }
    Findings findings = CheckRemains(velk::kReplySocket, CheckReplySocket);
    Append(findings, CheckRemains(velk::kSemaphoreFile, CheckSemaphore));
    return findings;
}

}  // namespace velkctl
