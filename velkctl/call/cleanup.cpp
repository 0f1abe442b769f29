// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// cleanup.cpp - removes the files of a call that was ended early.
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

namespace velkctl {
namespace {

// With a semaphore that is already posted, the next query would not wait for its answer.
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

void RemoveToolOutput() {
    // Readers of a tool's output take turns with a lock on the folder.
    const velk::UniqueFd lock(open(velk::kEditFolder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock.get() != -1 && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        (void)unlink(velk::kResultFile);
    }
}

// With the lock held, no edit is under way: every copy is of an ended edit. Keeps the copies that
// the command did not make, and those with the lost text of a file.
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

void CleanUp(const Command& command, bool tools_ended) {
    if (command.interface == VELK_WIRELESS_INTERFACE && command.type != VELK_RESTART) {
        RemoveQuery();
    }
    RemoveToolOutput();
    // A running tool may be copying the edit copy into place. Without the copy it would empty the
    // file of the device.
    if (command.type == VELK_SET && tools_ended) {
        RemoveEditCopies(command);
    }
}

}  // namespace velkctl
