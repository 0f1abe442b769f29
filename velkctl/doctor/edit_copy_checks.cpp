// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_copy_checks.cpp - unfinished edits, and files in the place of edit copies.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velkctl/call/edit_copy.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

// The settings can still be read and set.
Finding AboutCopy(const EditCopy& copy) {
    return {.subject = copy.file->subject,
            .file = copy.path,
            .remedy = DiscardCommand(copy),
            .affected = copy.file->holds};
}

Finding UnderWay(const EditCopy& copy, const std::string& holder) {
    return AboutCopy(copy).Warning("may be changing now",
                                   "an edit may be under way; the lock is held by " + holder,
                                   "wait until that process has ended");
}

// The library cannot remove it, and so cannot make its edit copy.
Finding NotRemovable(const EditCopy& copy) {
    const bool is_folder = S_ISDIR(copy.facts.st_mode);
    const std::string kind = is_folder ? "a folder is"
                                       : KindOf(copy.facts.st_mode) + " of another user, " +
                                             AgeOf(copy.facts) + " old; it is";
    const std::string right = is_folder ? "" : "; this user may not remove it";
    return AboutCopy(copy)
        .With(Impact::kSetting)
        .Problem("cannot be set", kind + " in the place of the edit copy" + right);
}

std::string OwnerAndModeOf(const struct stat& facts) {
    std::array<char, 8> mode{};
    (void)snprintf(mode.data(), mode.size(), "%03o", facts.st_mode & 07777U);
    return "a file of user " + std::to_string(facts.st_uid) + " with mode " + mode.data();
}

Finding Foreign(const EditCopy& copy) {
    const bool is_file = S_ISREG(copy.facts.st_mode);
    const std::string name = copy.facts.st_nlink > 1 ? " and another name" : "";
    const std::string kind =
        is_file ? OwnerAndModeOf(copy.facts) + name + " is not made by the library; it"
                : KindOf(copy.facts.st_mode);
    return AboutCopy(copy).Warning(
        "can still be set", kind + " is in the place of the edit copy; the next set replaces it",
        is_file ? "do not use its text; to remove it: " + DiscardCommand(copy) : "");
}

// It is the edit copy of a program with two users, or a program of root made it for any user.
Finding Unproven(const EditCopy& copy) {
    return AboutCopy(copy).Warning(
        "may be lost",
        OwnerAndModeOf(copy.facts) + "; it has more text than " + copy.file->path +
            "; a setuid program may have made it as its edit copy; the next set replaces it",
        "it may be the only complete text; look at it before you remove it: " +
            DiscardCommand(copy));
}

std::string DoubtsAbout(const EditCopy& copy) {
    if (!copy.has_end) {
        return "; it could not be read";
    }
    return *copy.has_end ? "" : "; its end may be missing too";
}

Finding Cut(const EditCopy& copy) {
    Finding about = AboutCopy(copy).With(Impact::kReading);
    about.file = copy.file->path;
    return about.Problem(
        "may be lost",
        "the file seems to have been cut while being copied; the rest is in the edit copy " +
            copy.path + ", " + AgeOf(copy.facts) + " old" + DoubtsAbout(copy) +
            "; the next set replaces it" + DescribeNewLines(copy),
        AdviceToFinish(copy));
}

std::string Compared(const EditCopy& copy) {
    switch (copy.state) {
        case EditState::kPart:
            return copy.facts.st_size == 0 ? "is empty" : "may be incomplete";
        case EditState::kInPlace:
            return "is the same as the file";
        case EditState::kUncompared:
            return "cannot be compared with the file";
        default:
            return "differs from the file";
    }
}

Finding UnfinishedEdit(const EditCopy& copy) {
    const Finding about = AboutCopy(copy);
    const std::string left = "an edit copy was left, " + AgeOf(copy.facts) + " old; it " +
                             Compared(copy) + "; the next set replaces it";
    switch (copy.state) {
        case EditState::kInPlace:
            return about.Warning("can still be set", left);
        case EditState::kPart:
            return about.Warning("may not have been set", left);
        default:
            return about.Warning("may not have been set", left + DescribeNewLines(copy),
                                 "to discard the edit: " + DiscardCommand(copy) +
                                     "; to finish it, " + AdviceToFinish(copy));
    }
}

Finding CheckCopy(const EditCopy& copy) {
    if (copy.state == EditState::kCut) {
        return Cut(copy);
    }
    if (S_ISDIR(copy.facts.st_mode) || !MayRemove(copy.path, copy.facts)) {
        return NotRemovable(copy);
    }
    if (copy.state == EditState::kUnproven) {
        return Unproven(copy);
    }
    return copy.state == EditState::kForeign ? Foreign(copy) : UnfinishedEdit(copy);
}

}  // namespace

Findings CheckEditCopies() {
    const std::vector<EditCopy> copies = FindEditCopies();
    const std::string holder = copies.empty() ? "" : DescribeLockHolder();
    Findings findings;
    for (const EditCopy& copy : copies) {
        if (!holder.empty() && S_ISREG(copy.facts.st_mode)) {
            findings.push_back(UnderWay(copy, holder));
        } else if (faccessat(AT_FDCWD, copy.path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
            findings.push_back(CheckCopy(copy));  // it is gone if the edit has ended since
        }
    }
    return findings;
}

}  // namespace velkctl
