// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_problem.cpp - the reason why the journal cannot be used, for people.
#include "velkctl/journal/journal_problem.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "lib/base/paths.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

std::string RemedyOf(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return std::string("free space on the disk of ") + velk::kLibraryFolder;
        case EACCES:
            return "run it as root";
        case EPERM:
            return std::string("make ") + velk::kJournalFolder +
                   " a folder of root where nobody else can write";
        default:
            return std::string("make ") + velk::kJournalFolder + " a folder that can be written";
    }
}

}  // namespace

Problem JournalProblem(std::string message, int error) {
    Problem problem{std::move(message)};
    if (error == EWOULDBLOCK) {
        problem.detail = "another program is changing settings";
        problem.remedy = kLockedRemedy;
        return problem;
    }
    if (error == EBUSY) {
        problem.detail = std::string(velk::kLockFile) + " cannot be opened";
        problem.remedy = "see 'velkctl doctor'";
        return problem;
    }
    problem.detail = std::string(velk::kJournalFolder) + ": " + strerror(error);
    problem.remedy = RemedyOf(error);
    return problem;
}

Problem LockedProblem(std::string message, const char* lock) {
    Problem problem = JournalProblem(std::move(message), EWOULDBLOCK);
    const std::string holder = DescribeLockHolder(lock);
    if (!holder.empty()) {
        problem.detail.append("; ").append(holder).append(" holds the lock");
    }
    return problem;
}

void NoteWait(const char* lock, int seconds, Report& report) {
    const std::string holder = seconds > 0 ? DescribeLockHolder(lock) : "";
    if (!holder.empty()) {
        report.Note("waiting at most " + std::to_string(seconds) + " s for the lock, held by " +
                    holder);
    }
}

JournalLock AwaitJournalLock(JournalLock::Use use, int wait_seconds, int least_seconds,
                             Report& report) {
    NoteWait(velk::kJournalLock, wait_seconds, report);
    return JournalLock(use, std::max(wait_seconds, least_seconds));
}

Problem InterruptedProblem(const std::string& id) {
    return {.message = "change " + id + " was interrupted",
            .remedy = "'velkctl recover' takes it back"};
}

ExitStatus StatusOfJournal(int error) {
    return error == EWOULDBLOCK ? ExitStatus::kLocked : ExitStatus::kFailed;
}

}  // namespace velkctl
