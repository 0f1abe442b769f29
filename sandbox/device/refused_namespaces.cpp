// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// refused_namespaces.cpp - explains why the kernel refuses private namespaces.
#include "sandbox/device/refused_namespaces.h"

#include <cerrno>
#include <fstream>
#include <string>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

// Settings of the kernel that refuse user namespaces to ordinary users. Most kernels lack them.
struct Restriction {
    const char* file;
    const char* name;
    int refuses;
    int allows;
};

constexpr Restriction kRestrictions[] = {
    {"/proc/sys/kernel/unprivileged_userns_clone", "kernel.unprivileged_userns_clone", 0, 1},
    {"/proc/sys/kernel/apparmor_restrict_unprivileged_userns",
     "kernel.apparmor_restrict_unprivileged_userns", 1, 0},
};

bool IsInForce(const Restriction& restriction) {
    int value = restriction.allows;
    std::ifstream(restriction.file) >> value;
    return value == restriction.refuses;
}

[[noreturn]] void ThrowForRoot() {
    throw Failure("this container gives its root no right to make namespaces",
                  "start the container with --privileged, or use the machine itself");
}

[[noreturn]] void ThrowForUser() {
    for (const Restriction& restriction : kRestrictions) {
        if (IsInForce(restriction)) {
            throw Failure("the kernel refuses user namespaces to ordinary users",
                          std::string("sudo sysctl ") + restriction.name + "=" +
                              std::to_string(restriction.allows) + ", or use sudo");
        }
    }
    throw Failure("this machine or container refuses user namespaces",
                  "use sudo, or start the container with --privileged");
}

}  // namespace

void ThrowIfRefused(int error, uid_t user) {
    if (error != EPERM && error != EACCES) {
        return;
    }
    if (user == 0) {
        ThrowForRoot();
    }
    ThrowForUser();
}

}  // namespace sandbox
