// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ownership.cpp - distinguishes this user's devices from those of other users.
#include "sandbox/control/ownership.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <linux/nsfs.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/numbers.h"
#include "sandbox/device/capabilities.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/proc_fields.h"

namespace sandbox {
namespace {

constexpr char kOwnUserNamespace[] = "/proc/self/ns/user";
constexpr char kNoProcess[] = "the device did not send its first process";
constexpr size_t kUsersOfProcess = 4;  // real, effective, saved and file system user

// Returns the process ID. Returns 0 if the process has ended, is in another PID namespace, or if
// the descriptor is not a pidfd.
long NumberOf(const velk::UniqueFd& process) {
    const std::string path = "/proc/self/fdinfo/" + std::to_string(process.get());
    return std::max(velk::ParseLeadingNumber<long>(ProcField(path, "Pid")).value_or(0), 0L);
}

// Opens the process's folder in /proc. It never becomes the folder of a later process with the same
// ID.
velk::UniqueFd FolderOf(const velk::UniqueFd& process) {
    const long number = NumberOf(process);
    const std::string path = "/proc/" + std::to_string(number);
    velk::UniqueFd folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    // The ID belongs to this process until it is waited for, so check it again after open(2).
    if (number == 0 || folder.get() == -1 || NumberOf(process) != number) {
        throw Failure(kNoProcess);
    }
    return folder;
}

std::string PathOf(const velk::UniqueFd& folder, const char* name) {
    return "/proc/self/fd/" + std::to_string(folder.get()) + name;
}

// The owner of the folder is not sufficient: the kernel shows root for processes of any user that
// are not dumpable.
void RefuseForeignUser(const velk::UniqueFd& folder) {
    std::istringstream text(ProcField(PathOf(folder, "/status"), "Uid"));
    const std::vector<uid_t> users{std::istream_iterator<uid_t>(text), {}};
    const auto foreign = std::ranges::find_if(users, [](uid_t user) { return user != geteuid(); });
    if (foreign != users.end()) {
        throw Failure("the device sent a process of " + DescribeUser(*foreign) +
                      "; it was not entered");
    }
    if (users.size() != kUsersOfProcess) {
        throw Failure(kNoProcess);
    }
}

bool IsOwnUserNamespace(const velk::UniqueFd& user_namespace) {
    struct stat own;
    struct stat other;
    return stat(kOwnUserNamespace, &own) == 0 && fstat(user_namespace.get(), &other) == 0 &&
           own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

bool IsMadeByThisUser(const velk::UniqueFd& user_namespace) {
    uid_t owner;
    return ioctl(user_namespace.get(), NS_GET_OWNER_UID, &owner) == 0 && owner == geteuid();
}

// Root enters a device with all its rights, so no other user may have rights over its namespaces.
void RefuseForeignUserNamespace(const velk::UniqueFd& folder) {
    const velk::UniqueFd user_namespace(
        open(PathOf(folder, "/ns/user").c_str(), O_RDONLY | O_CLOEXEC));
    if (user_namespace.get() == -1) {
        Fail("cannot open the device's user namespace", errno);
    }
    const bool is_own =
        IsPrivileged() ? IsOwnUserNamespace(user_namespace) : IsMadeByThisUser(user_namespace);
    if (!is_own) {
        throw Failure("the device is in a foreign user namespace; it was not entered");
    }
}

}  // namespace

uid_t PeerUser(const velk::UniqueFd& connection) {
    ucred credentials;
    socklen_t size = sizeof(credentials);
    if (getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == -1) {
        Fail("cannot determine the owner of the device", errno);
    }
    return credentials.uid;
}

bool IsOwnPeer(const velk::UniqueFd& connection) {
    return PeerUser(connection) == geteuid();
}

std::string DescribeUser(uid_t user) {
    const passwd* entry = getpwuid(user);
    const std::string number = std::to_string(user);
    return entry == nullptr ? "user " + number
                            : std::string("user ") + entry->pw_name + " (" + number + ")";
}

void RefuseForeignProcess(const velk::UniqueFd& process) {
    const velk::UniqueFd folder = FolderOf(process);
    RefuseForeignUser(folder);
    RefuseForeignUserNamespace(folder);
}

}  // namespace sandbox
