// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// capabilities.cpp - drops the capabilities that reach the machine itself.
#include "sandbox/device/capabilities.h"

#include <cerrno>
#include <cstdint>
#include <string>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "lib/base/numbers.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/proc_fields.h"

namespace sandbox {
namespace {

constexpr int kMachineCapabilities[] = {CAP_SYS_TIME, CAP_SYS_MODULE, CAP_SYS_RAWIO, CAP_SYS_BOOT};

struct CapabilitySets {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct words[_LINUX_CAPABILITY_U32S_3] = {};
};

// Reads a capability set, such as "CapEff", from /proc/self/status.
uint64_t ShownSet(const std::string& name) {
    constexpr char kStatus[] = "/proc/self/status";
    if (const auto set = velk::ParseLeadingNumber<uint64_t>(ProcField(kStatus, name), 16)) {
        return *set;
    }
    throw Failure("/proc/self/status does not show " + name);
}

bool Shows(const std::string& name, int capability) {
    return (ShownSet(name) >> capability & 1) != 0;
}

void DropFromBoundingSet(int capability) {
    if (prctl(PR_CAPBSET_READ, capability) == 1 && prctl(PR_CAPBSET_DROP, capability) == -1) {
        Fail("cannot drop capability " + std::to_string(capability), errno);
    }
}

// Throws Failure if the clock can be set. An unreadable set throws, too: it proves nothing.
void CheckClock() {
    for (const char* name : {"CapEff", "CapBnd"}) {
        if (Shows(name, CAP_SYS_TIME)) {
            throw Failure(std::string("the clock can still be set: CAP_SYS_TIME is in ") + name);
        }
    }
}

}  // namespace

bool IsPrivileged() {
    return geteuid() == 0 && Shows("CapEff", CAP_SYS_ADMIN) && Shows("CapEff", CAP_SETPCAP);
}

void ClearMachineCapabilities() {
    CapabilitySets sets;
    if (syscall(SYS_capget, &sets.header, sets.words) == -1) {
        Fail("cannot read capabilities", errno);
    }
    for (const int capability : kMachineCapabilities) {
        (void)prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_LOWER, capability, 0, 0);
        __user_cap_data_struct& word = sets.words[CAP_TO_INDEX(capability)];
        const uint32_t others = ~CAP_TO_MASK(capability);
        word.effective &= others;
        word.permitted &= others;
        word.inheritable &= others;
    }
    if (syscall(SYS_capset, &sets.header, sets.words) == -1) {
        Fail("cannot drop capabilities", errno);
    }
}

void DropMachineCapabilities() {
    for (const int capability : kMachineCapabilities) {
        DropFromBoundingSet(capability);
    }
    ClearMachineCapabilities();
    CheckClock();
}

}  // namespace sandbox
