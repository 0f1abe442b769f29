// device_layout.cpp - what a device consists of.
#include "sandbox/device/device_layout.h"

#include <algorithm>

#include "lib/base/paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

struct Folder {
    fs::path path;
    mode_t mode;
};

// Returns the folder that holds a file of the device.
fs::path FolderOf(const char* file) {
    return fs::path(file).parent_path();
}

std::vector<Folder> TmpfsFolders() {
    return {
        {velk::kSemaphoreFolder, 01777}, {"/proc/bus", 0755}, {"/run", 0755}, {"/tmp", 01777},
        {velk::kEditFolder, 01777},
    };
}

// The network hooks of the machine must not run on the device, so their folders are empty.
std::vector<Folder> DeviceFolders() {
    const fs::path network = FolderOf(velk::kInterfacesFile);
    return {
        {network, 0755},
        {network / "if-down.d", 0755},
        {network / "if-post-down.d", 0755},
        {network / "if-pre-up.d", 0755},
        {network / "if-up.d", 0755},
        {FolderOf(velk::kUsbDevices), 0755},
        {"/run/lock", 01777},
        {"/run/network", 0755},
        {FolderOf(velk::kSupportList), 0755},
        {FolderOf(velk::kSnmpFile), 0755},
        {FolderOf(velk::kCrontab), 0700},
        {"/var/lib/dhcp", 0755},
        {FolderOf(velk::kIdentityFile), 0755},
        {FolderOf(velk::kSyslogPrefix), 0755},
    };
}

// In folders that the device shares with the machine. An agent of the machine's, for one, must not
// be restarted from a device.
constexpr const char* kFiles[] = {velk::kClientScript, velk::kDhcpConfigFile, velk::kExitHooks,
                                  velk::kResolverFile, velk::kSnmpScript};

bool IsWithin(const fs::path& path, const fs::path& folder) {
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

}  // namespace

Plan MakePlan(const std::string& rootfs, const std::vector<SampleFile>& more_files) {
    Plan plan;
    for (const Folder& place : TmpfsFolders()) {
        plan.places.emplace(fs::weakly_canonical(place.path), place.mode);
    }
    for (const Folder& folder : DeviceFolders()) {
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
