// device_layout.cpp - what a device consists of.
#include "sandbox/device/device_layout.h"

#include <algorithm>

namespace sandbox {
namespace {

namespace fs = std::filesystem;

struct Folder {
    const char* path;
    mode_t mode;
};

constexpr Folder kPlaces[] = {
    {"/dev/shm", 01777}, {"/proc/bus", 0755}, {"/run", 0755}, {"/tmp", 01777}, {"/var/tmp", 01777},
};

// A network hook of the machine's, for one, must not run on the device.
constexpr Folder kFolders[] = {
    {"/etc/network", 0755},
    {"/etc/network/if-down.d", 0755},
    {"/etc/network/if-post-down.d", 0755},
    {"/etc/network/if-pre-up.d", 0755},
    {"/etc/network/if-up.d", 0755},
    {"/proc/bus/usb", 0755},
    {"/run/lock", 01777},
    {"/run/network", 0755},
    {"/usr/local/share/apps/wlan", 0755},
    {"/usr/local/share/etc/snmp", 0755},
    {"/var/cron/tabs", 0700},
    {"/var/lib/dhcp", 0755},
    {"/var/libvelk", 0755},
    {"/var/log/syslog", 0755},
};

// In folders that the device shares with the machine. An agent of the machine's, for one, must not
// be restarted from a device.
constexpr const char* kFiles[] = {
    "/etc/dhclient-exit-hooks", "/etc/dhclient.conf",    "/etc/init.d/snmpd",
    "/etc/resolv.dnsmasq.conf", "/sbin/dhclient-script",
};

bool IsWithin(const fs::path& path, const fs::path& folder) {
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

}  // namespace

Plan MakePlan(const std::string& rootfs, const std::vector<SampleFile>& more_files) {
    Plan plan;
    for (const Folder& place : kPlaces) {
        plan.places.emplace(fs::weakly_canonical(place.path), place.mode);
    }
    for (const Folder& folder : kFolders) {
        plan.folders.emplace(DeviceTree::Resolve(folder.path), folder.mode);
    }
    for (const char* file : kFiles) {
        plan.files.push_back(DeviceTree::Resolve(file));
    }
    plan.samples = ReadSamples(rootfs);
    plan.samples.insert(plan.samples.end(), more_files.begin(), more_files.end());
    for (SampleFile& sample : plan.samples) {
        sample.path = DeviceTree::Resolve(sample.path);
        plan.files.push_back(sample.path);
    }
    return plan;
}

bool IsHidden(const fs::path& path, const Plan& plan) {
    return !plan.places.contains(path) && std::ranges::any_of(plan.places, [&](const auto& place) {
        return IsWithin(path, place.first);
    });
}

void RemoveMachineContents(const Plan& plan) {
    for (const auto& [folder, mode] : plan.folders) {
        fs::remove_all(folder);
    }
    for (const fs::path& file : plan.files) {
        fs::remove_all(file);
    }
}

void CoverPlaces(const Plan& plan, DeviceTree& tree) {
    for (const auto& [place, mode] : plan.places) {
        tree.Cover(place, mode);
    }
}

void MakeContents(const Plan& plan, DeviceTree& tree) {
    for (const auto& [folder, mode] : plan.folders) {
        tree.Claim(folder);
    }
    for (const fs::path& file : plan.files) {
        tree.Claim(file);
    }
    for (const auto& [folder, mode] : plan.folders) {
        tree.MakeFolder(folder, mode);
    }
    for (const fs::path& file : plan.files) {
        tree.MakePrivate(file.parent_path());
    }
    for (const SampleFile& sample : plan.samples) {
        WriteSample(sample);
    }
}

}  // namespace sandbox
