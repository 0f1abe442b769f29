// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// real_tools.cpp - prepares a device that uses the system's own tools (--real).
#include "sandbox/session/real_tools.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "sandbox/device/capabilities.h"
#include "sandbox/device/sample_files.h"
#include "sandbox/hardware/ports.h"
#include "sandbox/process/programs.h"

namespace sandbox {
namespace {

constexpr char kBootScript[] = "/etc/init.d/boot";
constexpr const char* kTools[] = {"busybox", "cron",   "dhclient", "dnsmasq", "ethtool", "ifup",
                                  "ip",      "ntpdig", "perl",     "snmpd",   "sudo"};

std::string MissingTools() {
    std::string missing;
    for (const char* tool : kTools) {
        if (FindProgram(tool).empty()) {
            missing.append(" ").append(tool);
        }
    }
    return missing;
}

}  // namespace

void CheckRealTools() {
    if (!IsPrivileged()) {
        throw Failure("--real needs the rights of root", "run it with sudo");
    }
    if (!PortsKeepSpeed()) {
        throw Failure("--real needs tap interfaces, but /dev/net/tun cannot be opened",
                      "load the kernel module: modprobe tun");
    }
    if (const std::string missing = MissingTools(); !missing.empty()) {
        throw Failure("--real needs tools that are not installed:" + missing,
                      "install their packages, as scripts/setup does");
    }
}

void AddRealToolFiles(const std::string& folder, DeviceOptions& device) {
    std::vector<SampleFile> present = ReadSamples(device.rootfs);
    present.insert(present.end(), device.files.begin(), device.files.end());
    for (SampleFile& file : ReadSamples(folder)) {
        if (std::ranges::find(present, file.path, &SampleFile::path) == present.end()) {
            device.files.push_back(std::move(file));
        }
    }
}

void RunBootScript() {
    (void)RunProgram({"/bin/sh", kBootScript});
}

}  // namespace sandbox
