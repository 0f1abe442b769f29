// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shared_device.cpp - a device with real tools, made anew for each run of callers.
#include "schedules/kit/shared_device.h"

#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/libc_recorder.h"
#include "support/paths.h"

namespace schedules {
namespace {

constexpr char kTools[] = "/run/schedule-tools";

constexpr char kSudo[] = R"(#!/bin/sh
case $1 in
    sed) exec "$@" ;;
    ethtool) printf '\tSpeed: 100Mb/s\n\tDuplex: Half\n\tAuto-negotiation: off\n' ;;
esac
)";

constexpr char kIfconfig[] = R"(#!/bin/sh
printf 'eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10\n'
printf '          inet addr:10.0.0.5  Bcast:10.0.0.255  Mask:255.255.255.0\n'
)";

void WriteTool(const std::string& name, const char* text) {
    const std::string path = std::string(kTools) + "/" + name;
    testkit::WriteFile(path, text);
    if (chmod(path.c_str(), 0755) != 0 || access(path.c_str(), X_OK) != 0) {
        throw std::runtime_error("no harmless " + name);
    }
}

bool MakeTools() {
    (void)mkdir(kTools, 0755);
    WriteTool("sudo", kSudo);
    WriteTool("ifconfig", kIfconfig);
    for (const char* name : {"ifdown", "ifup", "dhclient", "route"}) {
        WriteTool(name, "#!/bin/sh\n");
    }
    return true;
}

bool IsLocked(const char* path) {
    const velk::UniqueFd fd(open(path, O_RDONLY | O_CLOEXEC));
    return fd.get() != -1 && flock(fd.get(), LOCK_EX | LOCK_NB) == -1;
}

}  // namespace

void MakeDevice() {
    [[maybe_unused]] static const bool are_tools_made = MakeTools();
    testkit::LibcRecorder::Get().Reset();
    testkit::EmptyDevice();
    fault::WriteFiles({});
    testkit::WriteFile(testkit::kLockFile, "");
}

void EnterDevice() {
    testkit::LibcRecorder& libc = testkit::LibcRecorder::Get();
    libc.Reset();
    libc.ScriptAlways(testkit::Call::kIoctl, testkit::Return(0));  // nobody has an eth0 here
    libc.ScriptAlways(testkit::Call::kSyslog, testkit::Return(0));
    (void)setenv("PATH", (std::string(kTools) + ":/usr/bin:/bin").c_str(), 1);
}

std::string ValueOf(uint32_t id) {
    _velk_request response{};
    const _velk_request request = testkit::MakeRequest(VELK_GET, id, "eth0");
    return execute_velk_command(&request, &response) == 0 ? response.data : "(unreadable)";
}

std::string FindRemains(const Course& course) {
    std::string text;
    for (const std::string& path : fault::RemainingFiles()) {
        text.append(path).append(" is left\n");
    }
    for (const char* path : {testkit::kLockFile, testkit::kJournalLock, testkit::kEditFolder}) {
        text.append(IsLocked(path) ? std::string(path) + " is locked\n" : "");
    }
    for (const std::string& caller : course.left) {
        // It waits for the confirmation, or for the other callers.
        if (caller == "guardian" || caller == "daemon") {
            continue;
        }
        text.append(caller).append(" has not ended\n");
    }
    return text;
}

}  // namespace schedules
