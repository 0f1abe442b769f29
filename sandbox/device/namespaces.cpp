// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// namespaces.cpp - the namespaces of a device, before anything is mounted in them.
#include "sandbox/device/namespaces.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <linux/sched.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "sandbox/device/network_control.h"
#include "sandbox/device/refused_namespaces.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr std::string_view kHostName = "velk";
constexpr int kPrivateNamespaces = CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC;

void WriteIds(const char* path, const std::string& text, uid_t user) {
    const velk::UniqueFd file(open(path, O_WRONLY | O_CLOEXEC));
    const ssize_t size = static_cast<ssize_t>(text.size());
    if (file.get() == -1 || write(file.get(), text.data(), text.size()) != size) {
        ThrowIfRefused(errno, user);
        Fail(std::string("cannot write ") + path, errno);
    }
}

[[noreturn]] void FailToMake(const char* namespaces) {
    const int error = errno;
    ThrowIfRefused(error, geteuid());
    const std::string text = std::string("cannot make ") + namespaces;
    if (error == ENOSPC) {  // its own text, "No space left on device", would mislead
        throw Failure(text + ": the limit in /proc/sys/user is reached",
                      "raise the max_*_namespaces limits in /proc/sys/user");
    }
    Fail(text, error);
}

}  // namespace

void EnterUserNamespace() {
    const uid_t user = geteuid();  // has no number in the new namespace until it is mapped
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER) == -1) {
        FailToMake("a user namespace");
    }
    // The kernel accepts a group map from an ordinary user only if setgroups(2) is denied.
    WriteIds("/proc/self/setgroups", "deny", user);
    WriteIds("/proc/self/gid_map", "0 " + group + " 1", user);
    WriteIds("/proc/self/uid_map", "0 " + std::to_string(user) + " 1", user);
}

pid_t ForkFirstProcess() {
    // With unshare(2) and fork(2), this process could never fork again. Tools that fork at exit,
    // such as a leak checker, would fail.
    clone_args arguments{};
    arguments.flags = CLONE_NEWPID;
    arguments.exit_signal = SIGCHLD;
    const long child = syscall(SYS_clone3, &arguments, sizeof(arguments));
    if (child == -1) {
        FailToMake("a PID namespace");
    }
    return static_cast<pid_t>(child);
}

void EnterPrivateNamespaces() {
    if (unshare(kPrivateNamespaces) == -1) {
        FailToMake("mount and network namespaces");
    }
    if (mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) ==
        -1) {  // Valgrind reads the strings
        Fail("cannot make mounts private", errno);
    }
    if (sethostname(kHostName.data(), kHostName.size()) == -1) {
        Fail("cannot name the device", errno);
    }
    NetworkControl().BringUp("lo");
}

}  // namespace sandbox
