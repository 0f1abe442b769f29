// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// namespaces.cpp - the namespaces of a trial, and the rights of its process.
#include "velkctl/preview/namespaces.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr int kNamespaces = CLONE_NEWNS | CLONE_NEWPID;

// The library edits files of several users.
constexpr std::array kFileRights{CAP_CHOWN, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER,
                                 CAP_FSETID};

// Settings of the kernel that refuse user namespaces to ordinary users. Most kernels lack them.
struct Restriction {
    const char* file;
    const char* setting;
    std::string_view refuses;
    const char* allows;
};

constexpr std::array<Restriction, 2> kRestrictions{{
    {"/proc/sys/kernel/unprivileged_userns_clone", "kernel.unprivileged_userns_clone", "0", "1"},
    {"/proc/sys/kernel/apparmor_restrict_unprivileged_userns",
     "kernel.apparmor_restrict_unprivileged_userns", "1", "0"},
}};

bool Write(const char* path, const std::string& text) {
    const velk::UniqueFd file(open(path, O_WRONLY | O_CLOEXEC));
    return file.get() != -1 && velk::WriteAll(file.get(), text);
}

// "1000 1000 1": the same number inside and outside.
std::string SameId(unsigned id) {
    return std::to_string(id) + " " + std::to_string(id) + " 1";
}

// The kernel accepts a group map from an ordinary user only if setgroups(2) is denied. A kernel
// that does not know this has no such file.
int EnterUserNamespace() {
    const std::string user = SameId(geteuid());
    const std::string group = SameId(getegid());
    if (unshare(CLONE_NEWUSER | kNamespaces) == -1) {
        return errno;
    }
    (void)Write("/proc/self/setgroups", "deny");
    return Write("/proc/self/gid_map", group) && Write("/proc/self/uid_map", user) ? 0 : errno;
}

bool IsFileRight(unsigned right) {
    return std::ranges::find(kFileRights, static_cast<int>(right)) != kFileRights.end();
}

// A program that root starts has all rights of the bounding set.
void ShrinkBoundingSet() {
    for (unsigned right = 0; prctl(PR_CAPBSET_READ, right) >= 0; ++right) {
        if (!IsFileRight(right)) {
            (void)prctl(PR_CAPBSET_DROP, right);
        }
    }
}

// In a user namespace an ordinary user has rights that open all of the user's files, against their
// modes. Returns 0 or errno.
int ShrinkOwnSet() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
    (void)syscall(SYS_capget, &header, sets.data());
    uint32_t kept = 0;
    for (const int right : kFileRights) {
        kept |= geteuid() == 0 ? CAP_TO_MASK(right) : 0;
    }
    sets[0].effective &= kept;
    sets[0].permitted &= kept;
    sets[0].inheritable = 0;
    sets[1] = {};
    return syscall(SYS_capset, &header, sets.data()) == 0 ? 0 : errno;
}

}  // namespace

int EnterNamespaces() {
    if (geteuid() == 0 && unshare(kNamespaces) == 0) {
        return 0;
    }
    return EnterUserNamespace();
}

int GiveUpRights() {
    ShrinkBoundingSet();
    const int error = ShrinkOwnSet();
    if (error != 0) {
        return error;
    }
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? 0 : errno;
}

std::string NamespaceAdvice(int error) {
    if (error == ENOSPC) {
        return "raise the max_*_namespaces limits in /proc/sys/user";
    }
    if (geteuid() == 0) {
        return "start the container with --privileged, or use the device itself";
    }
    for (const Restriction& restriction : kRestrictions) {
        if (Trimmed(ReadTextFile(restriction.file).bytes) == restriction.refuses) {
            return std::string("use sudo, or: sudo sysctl ") + restriction.setting + "=" +
                   restriction.allows;
        }
    }
    return "use sudo";
}

}  // namespace velkctl
