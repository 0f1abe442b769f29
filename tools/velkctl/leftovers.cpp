// leftovers.cpp - removes what a call leaves on the device that was ended in the middle.
#include "velkctl/leftovers.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "frame/command_output.h"
#include "frame/unique_fd.h"
#include "velk.h"
#include "velkctl/places.h"

namespace velkctl {
namespace {

constexpr char kReadySemaphore[] = "/WlanAplRecvSem";
constexpr char kToolOutputLock[] = "/var/tmp/get_result_lock";
constexpr std::array kEditCopies{
    "/var/tmp/interfaces",      "/var/tmp/dhclient.conf", "/var/tmp/dhclient-exit-hooks",
    "/var/tmp/dhclient-script", "/var/tmp/libvelk",       "/var/tmp/root",
};

// Says whether a program has the reply socket bound. The kernel refuses a connection to a path
// that nobody has, and to no other.
bool IsReplySocketInUse() {
    const velk::UniqueFd probe(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, kReplySocket, sizeof(kReplySocket));
    if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
        return true;
    }
    return errno != ECONNREFUSED && errno != ENOENT;
}

// A semaphore that was posted already would have the daemon answer the next query too early.
void RemoveQuery() {
    if (IsReplySocketInUse()) {
        return;
    }
    (void)unlink(kReplySocket);
    (void)sem_unlink(kReadySemaphore);
}

void RemoveToolOutput() {
    // Without O_CREAT: where nobody has ever read a tool's output, there is none.
    const velk::UniqueFd lock(open(kToolOutputLock, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (lock.get() != -1 && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        (void)unlink(velk::kResultFile);
    }
}

// While the lock is held nobody edits: a copy that is there is one left behind.
void RemoveEditCopies() {
    const int lock = VkLibLock();
    if (lock <= 0) {
        return;
    }
    for (const char* copy : kEditCopies) {
        (void)unlink(copy);
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
