// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unfinished_edits.cpp - warns of edit copies that a set replaces.
#include "velkctl/call/unfinished_edits.h"

#include <vector>

#include "velkctl/call/edit_copy.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

// Returns the edit copies of the command with files that were cut, or may have been.
std::vector<EditCopy> CutEdits(const Command& command) {
    std::vector<EditCopy> copies = FindEditCopies(command);
    std::erase_if(copies, [](const EditCopy& copy) {
        return copy.state != EditState::kCut && copy.state != EditState::kUnproven;
    });
    return copies;
}

Problem LossOf(const EditCopy& copy, const std::string& subject) {
    if (copy.state == EditState::kUnproven) {
        return {.message = subject + ": this set replaces " + copy.path,
                .detail = "it may be the only complete text of " + std::string(copy.file->path),
                .remedy = "look at it before a set"};
    }
    return {.message = subject + ": this set replaces the edit copy " + copy.path,
            .detail = std::string(copy.file->path) +
                      " seems cut by an interrupted edit; the copy has the rest" +
                      Printable(DescribeNewLines(copy)),
            .remedy = "before a set, " + AdviceToFinish(copy)};
}

}  // namespace

void NoteUnfinishedEdits(const Command& command, const std::string& subject, Report& report) {
    if (CutEdits(command).empty()) {
        return;
    }
    const LibraryLock lock;
    if (lock.is_busy()) {
        return;  // an edit may be under way; the library will refuse this command
    }
    for (const EditCopy& copy : CutEdits(command)) {
        report.Note(LossOf(copy, subject));
    }
}

}  // namespace velkctl
