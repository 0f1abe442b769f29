// leftovers.cpp - removes what a call leaves on the device that was ended in the middle.
#include "velkctl/leftovers.h"

#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <unistd.h>

#include "frame/unique_fd.h"
#include "velk.h"
#include "velkctl/device_files.h"
#include "velkctl/places.h"
#include "velkctl/unix_socket.h"

namespace velkctl {
namespace {

// A semaphore that was posted already would have the daemon answer the next query too early.
void RemoveQuery() {
    if (IsBound(kReplySocket)) {
        return;
    }
    (void)unlink(kReplySocket);
    (void)sem_unlink(kSemaphoreName);
}

void RemoveToolOutput() {
    // Without O_CREAT: where nobody has ever read a tool's output, there is none.
    const velk::UniqueFd lock(open(kResultLockFile, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (lock.get() != -1 && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        (void)unlink(kResultFile);
    }
}

// While the lock is held nobody edits: a copy that is there is one left behind.
void RemoveEditCopies() {
    const int lock = VkLibLock();
    if (lock <= 0) {
        return;
    }
    for (const DeviceFile& file : DeviceFiles()) {
        if (file.change == Change::kByEdit) {
            (void)unlink(EditCopyOf(file.path).c_str());
        }
    }
    VkLibUnLock(lock);
}

}  // namespace

void RemoveLeftovers(const Command& command, bool tools_ended) {
    if (command.interface == VELK_WIRELESS_INTERFACE && command.type != VELK_RESTART) {
        RemoveQuery();
    }
    RemoveToolOutput();
    // A tool may still be putting a copy in place, and without it would empty the device's file.
    if (command.type == VELK_SET && tools_ended) {
        RemoveEditCopies();
    }
}

}  // namespace velkctl
