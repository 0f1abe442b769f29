// cleanup.cpp - what a call leaves on the device that was ended in the middle.
#include "velkctl/call/cleanup.h"

#include <vector>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "velkctl/call/edit_copy.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

// A semaphore that was posted already would have the daemon answer the next query too early.
void RemoveQuery() {
    if (IsBound(velk::kReplySocket)) {
        return;
    }
    (void)unlink(velk::kReplySocket);
    (void)sem_unlink(velk::kSemaphoreName);
}

bool IsDispensable(EditState state) {
    return state == EditState::kPart || state == EditState::kInPlace ||
           state == EditState::kDiffers;
}

// Of files that were cut, or may have been, and that the command edits.
std::vector<EditCopy> CutEdits(const Command& command) {
    std::vector<EditCopy> copies = FindEditCopies(command);
    std::erase_if(copies, [](const EditCopy& copy) {
        return copy.state != EditState::kCut && copy.state != EditState::kUnproven;
    });
    return copies;
}

std::string LossOf(const EditCopy& copy) {
    if (copy.state == EditState::kUnproven) {
        return "this set replaces " + copy.path + ", which may be the only whole text of " +
               copy.file->path + "; look at it before a set";
    }
    return std::string(copy.file->path) +
           " seems to have been cut while being copied, and this set replaces the edit copy that "
           "has the rest" +
           Printable(AdditionsOf(copy)) + "; before a set, " + FinishingOf(copy);
}

void RemoveToolOutput() {
    // Readers of a tool's output take turns by a lock on the folder.
    const velk::UniqueFd lock(open(velk::kEditFolder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock.get() != -1 && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        (void)unlink(velk::kResultFile);
    }
}

// While the lock is held nobody edits: a copy that is there is one left behind. What the command
// did not make stays, and so does what a cut file has lost.
void RemoveEditCopies(const Command& command) {
    const LibraryLock lock;
    if (!lock.is_held()) {
        return;
    }
    for (const EditCopy& copy : FindEditCopies(command)) {
        if (IsDispensable(copy.state)) {
            (void)unlink(copy.path.c_str());
        }
    }
}

}  // namespace

void RemoveLeftovers(const Command& command, bool tools_ended) {
    if (command.interface == VELK_WIRELESS_INTERFACE && command.type != VELK_RESTART) {
        RemoveQuery();
    }
    RemoveToolOutput();
    // A tool may still be putting a copy in place, and without it would empty the device's file.
    if (command.type == VELK_SET && tools_ended) {
        RemoveEditCopies(command);
    }
}

void TellOfUnfinishedEdits(const Command& command, const std::string& what, Report& report) {
    if (CutEdits(command).empty()) {
        return;
    }
    const LibraryLock lock;
    if (lock.is_busy()) {
        return;  // an edit may be under way, and this command is refused
    }
    for (const EditCopy& copy : CutEdits(command)) {
        report.Note(what + ": " + LossOf(copy));
    }
}

}  // namespace velkctl
