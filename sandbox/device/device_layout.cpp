// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_layout.cpp - the folders and files of a device.
#include "sandbox/device/device_layout.h"

#include <algorithm>
#include <iterator>

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
        {velk::kSemaphoreFolder, 01777}, {"/proc/bus", 0755},        {"/run", 0755},
        {velk::kSocketFolder, 01777},    {velk::kEditFolder, 01777},
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
        {velk::kLeaseFolder, 0755},
        {FolderOf(velk::kIdentityFile), 0755},
        {FolderOf(velk::kSyslogPrefix), 0755},
    };
}

// Files in folders that the device shares with the machine. The machine's own files of these names
// must not be used on the device: for example, it must not restart the machine's SNMP agent.
constexpr const char* kFiles[] = {velk::kClientScript, velk::kDhcpConfigFile, velk::kExitHooks,
                                  velk::kResolverFile, velk::kSnmpScript};

bool IsWithin(const fs::path& path, const fs::path& folder) {
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

// True for a folder that every device has.
bool IsOwnFolder(const fs::path& path, const DeviceLayout& layout) {
    return layout.folders.contains(path) || layout.tmpfs_folders.contains(path);
}

// A tmpfs folder may be a link on the machine.
fs::path ResolvedPlace(const SampleFile& sample, const DeviceLayout& layout) {
    const fs::path whole = fs::weakly_canonical(sample.path);
    return sample.kind == FileKind::kFolder && IsOwnFolder(whole, layout)
               ? whole
               : DeviceTree::Resolve(sample.path);
}

}  // namespace

bool IsDevicePath(const fs::path& path) {
    return std::ranges::find(kFiles, path) != std::end(kFiles) ||
           (!IsWithin(path, "/run") && !PrivateFolderOf(path).empty());
}

DeviceLayout MakeDeviceLayout(const std::string& rootfs, const std::vector<SampleFile>& more_files,
                              const std::vector<std::string>& hidden,
                              const std::vector<std::string>& missing) {
    DeviceLayout layout;
    for (const Folder& folder : TmpfsFolders()) {
        layout.tmpfs_folders.emplace(fs::weakly_canonical(folder.path), folder.mode);
    }
    for (const Folder& folder : DeviceFolders()) {
        layout.folders.emplace(DeviceTree::Resolve(folder.path), folder.mode);
    }
    for (const char* file : kFiles) {
        layout.files.push_back(DeviceTree::Resolve(file));
    }
    layout.samples = ReadSamples(rootfs);
    layout.samples.insert(layout.samples.end(), more_files.begin(), more_files.end());
    for (SampleFile& sample : layout.samples) {
        sample.path = ResolvedPlace(sample, layout);
        if (!IsOwnFolder(sample.path, layout)) {
            layout.files.push_back(sample.path);
        }
    }
    for (const std::string& file : hidden) {
        layout.files.push_back(DeviceTree::Resolve(file));
    }
    for (const std::string& folder : missing) {
        layout.missing_folders.push_back(DeviceTree::Resolve(folder));
    }
    return layout;
}

bool IsHidden(const fs::path& path, const DeviceLayout& layout) {
    return !layout.tmpfs_folders.contains(path) &&
           std::ranges::any_of(layout.tmpfs_folders,
                               [&](const auto& folder) { return IsWithin(path, folder.first); });
}

fs::path PrivateFolderOf(const fs::path& path) {
    std::vector<Folder> folders = TmpfsFolders();
    std::ranges::copy(DeviceFolders(), std::back_inserter(folders));
    const auto found = std::ranges::find_if(
        folders, [&path](const Folder& folder) { return IsWithin(path, folder.path); });
    return found == folders.end() ? fs::path() : found->path;
}

bool CanStayVisible(const fs::path& folder) {
    return std::ranges::any_of(TmpfsFolders(), [&folder](const Folder& tmpfs) {
        return folder != tmpfs.path && IsWithin(folder, tmpfs.path);
    });
}

void RemoveMachineContents(const DeviceLayout& layout) {
    for (const auto& [folder, mode] : layout.folders) {
        fs::remove_all(folder);
    }
    for (const fs::path& file : layout.files) {
        fs::remove_all(file);
    }
}

void MountTmpfsFolders(const DeviceLayout& layout, DeviceTree& tree) {
    for (const auto& [folder, mode] : layout.tmpfs_folders) {
        tree.MountTmpfsAt(folder, mode);
    }
}

void MakeFoldersAndFiles(const DeviceLayout& layout, DeviceTree& tree) {
    for (const auto& [folder, mode] : layout.folders) {
        tree.Hide(folder);
    }
    for (const fs::path& file : layout.files) {
        tree.Hide(file);
    }
    for (const auto& [folder, mode] : layout.folders) {
        tree.MakeFolder(folder, mode);
    }
    for (const fs::path& file : layout.files) {
        tree.MakePrivate(file.parent_path());
    }
    for (const SampleFile& sample : layout.samples) {
        WriteSample(sample);
    }
    for (const fs::path& folder : layout.missing_folders) {
        std::error_code stays;  // as a tmpfs folder does
        fs::remove(folder, stays);
    }
}

}  // namespace sandbox
