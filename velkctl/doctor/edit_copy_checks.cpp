// edit_copy_checks.cpp - edits that were left unfinished, and what stands in the way of others.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velkctl/call/edit_copy.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

// What every finding of an edit copy has in common; nothing is wrong with the settings yet.
Finding About(const EditCopy& copy) {
    return {.severity = Severity::kWarning,
            .subject = std::string(copy.file->subject),
            .file = copy.path,
            .remedy = DiscardingOf(copy),
            .concerns = ConcernsOf(copy.file->holds)};
}

Finding UnderWay(const EditCopy& copy, const std::string& holder) {
    Finding finding = About(copy);
    finding.effect = "may be changing now";
    finding.what = "an edit may be under way: the lock is held by " + holder;
    finding.remedy = "none while that one is at work";
    return finding;
}

// What keeps the library from making its edit copy, which removes what it may first.
Finding InTheWay(const EditCopy& copy) {
    Finding finding = About(copy);
    finding.severity = Severity::kProblem;
    finding.effect = "cannot be set";
    finding.what =
        S_ISDIR(copy.facts.st_mode)
            ? "a folder stands where the edit copy is made"
            : KindOf(copy.facts.st_mode) + " of another user, " + AgeOf(copy.facts) +
                  " old, that this one may not remove, stands where the edit copy is made";
    finding.hinders = Hinders::kSetting;
    return finding;
}

std::string Octal(mode_t mode) {
    std::array<char, 8> text{};
    (void)snprintf(text.data(), text.size(), "%03o", mode & 07777U);
    return text.data();
}

std::string OwnerAndModeOf(const struct stat& facts) {
    return "a file of user " + std::to_string(facts.st_uid) + " with mode " + Octal(facts.st_mode);
}

std::string KindAndOwnerOf(const struct stat& facts) {
    if (!S_ISREG(facts.st_mode)) {
        return KindOf(facts.st_mode);
    }
    const std::string names = facts.st_nlink > 1 ? " and another name" : "";
    return OwnerAndModeOf(facts) + names + ", not made by the library,";
}

Finding Foreign(const EditCopy& copy) {
    Finding finding = About(copy);
    finding.effect = "can still be set";
    finding.what = KindAndOwnerOf(copy.facts) +
                   " stands where the edit copy is made; the next set replaces it";
    if (S_ISREG(copy.facts.st_mode)) {
        finding.remedy = "look at it, use nothing of it, and remove it: " + DiscardingOf(copy);
    }
    return finding;
}

// It may be the edit of a program with two users, or anybody's file that a program of root's made.
Finding Unproven(const EditCopy& copy) {
    Finding finding = About(copy);
    finding.effect = "may be lost";
    finding.what = OwnerAndModeOf(copy.facts) +
                   ", perhaps the edit copy of a program whose real and effective user differ, has "
                   "more than " +
                   copy.file->path + "; the next set replaces it";
    finding.remedy =
        "it may be the only whole text; look at it before you remove it: " + DiscardingOf(copy);
    return finding;
}

std::string DoubtsAbout(const EditCopy& copy) {
    if (!copy.has_end) {
        return "which could not be read, and ";
    }
    return *copy.has_end ? "" : "which may lack its end, too, and ";
}

Finding Cut(const EditCopy& copy) {
    Finding finding = About(copy);
    finding.severity = Severity::kProblem;
    finding.effect = "may be lost";
    finding.file = copy.file->path;
    finding.what =
        "the file seems to have been cut while being copied; the rest is in its edit "
        "copy " +
        copy.path + ", " + AgeOf(copy.facts) + " old, " + DoubtsAbout(copy) +
        "which the next set replaces" + AdditionsOf(copy);
    finding.remedy = FinishingOf(copy);
    finding.hinders = Hinders::kReading;
    return finding;
}

// What the edit copy holds, beside the file.
std::string WhatIsLeft(const EditCopy& copy) {
    switch (copy.state) {
        case EditState::kPart:
            return copy.facts.st_size == 0 ? ", empty" : ", that may not be whole";
        case EditState::kInPlace:
            return ", the same as the file";
        case EditState::kUncompared:
            return ", that cannot be compared with the file";
        default:
            return ", that differs from the file";
    }
}

Finding LeftBehind(const EditCopy& copy) {
    Finding finding = About(copy);
    finding.effect =
        copy.state == EditState::kInPlace ? "can still be set" : "may not have been set";
    finding.what = "an edit copy was left behind, " + AgeOf(copy.facts) + " old" +
                   WhatIsLeft(copy) + "; the next set replaces it";
    if (copy.state == EditState::kDiffers || copy.state == EditState::kUncompared) {
        finding.what += AdditionsOf(copy);
        finding.remedy =
            "to discard the edit: " + DiscardingOf(copy) + "; to finish it, " + FinishingOf(copy);
    }
    return finding;
}

Finding Judge(const EditCopy& copy) {
    if (copy.state == EditState::kCut) {
        return Cut(copy);
    }
    if (S_ISDIR(copy.facts.st_mode) || !MayRemove(copy.path, copy.facts)) {
        return InTheWay(copy);
    }
    if (copy.state == EditState::kUnproven) {
        return Unproven(copy);
    }
    return copy.state == EditState::kForeign ? Foreign(copy) : LeftBehind(copy);
}

}  // namespace

Findings CheckEditCopies() {
    const std::vector<EditCopy> copies = FindEditCopies();
    const std::string holder = copies.empty() ? "" : LockHolderInWords();
    Findings findings;
    for (const EditCopy& copy : copies) {
        if (!holder.empty() && S_ISREG(copy.facts.st_mode)) {
            findings.push_back(UnderWay(copy, holder));
        } else if (faccessat(AT_FDCWD, copy.path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
            findings.push_back(Judge(copy));  // an edit that has ended meanwhile left none
        }
    }
    return findings;
}

}  // namespace velkctl
