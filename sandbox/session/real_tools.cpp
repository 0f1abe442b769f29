// real_tools.cpp - a device that lives on the system's own tools.
#include "sandbox/session/real_tools.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "sandbox/device/capabilities.h"
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

void RefuseUnlessReal() {
    if (!IsPrivileged()) {
        throw Failure("only root may make a device with the system's own tools");
    }
    if (!PortsKeepSpeed()) {
        throw Failure("there are no taps to be had: /dev/net/tun cannot be opened");
    }
    if (const std::string missing = MissingTools(); !missing.empty()) {
        throw Failure("these tools are not installed:" + missing);
    }
}

void AddRealFiles(const std::string& folder, DeviceOptions& device) {
    const std::vector<SampleFile> present = ReadSamples(device.rootfs);
    for (SampleFile& file : ReadSamples(folder)) {
        if (std::ranges::find(present, file.path, &SampleFile::path) == present.end()) {
            device.files.push_back(std::move(file));
        }
    }
}

void Boot() {
    (void)RunProgram({"/bin/sh", kBootScript});
}

}  // namespace sandbox
