// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_problem.cpp - the reason why the journal cannot be used, for people.
#include "velkctl/journal/journal_problem.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "lib/base/paths.h"

namespace velkctl {
namespace {

std::string RemedyOf(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return std::string("free space on the disk of ") + velk::kLibraryFolder;
        case EACCES:
        case EPERM:
            return "run it as root";
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
    problem.detail = std::string(velk::kJournalFolder) + ": " + strerror(error);
    problem.remedy = RemedyOf(error);
    return problem;
}

Problem InterruptedProblem(const std::string& id) {
    return {.message = "change " + id + " was interrupted",
            .remedy = "'velkctl recover' takes it back"};
}

ExitStatus StatusOfJournal(int error) {
    return error == EWOULDBLOCK ? ExitStatus::kLocked : ExitStatus::kFailed;
}

}  // namespace velkctl
