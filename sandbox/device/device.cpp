// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device.cpp - moves a process onto a simulated device.
#include "sandbox/device/device.h"

#include <algorithm>
#include <filesystem>

#include <unistd.h>

#include "sandbox/device/bind_folders.h"
#include "sandbox/device/capabilities.h"
#include "sandbox/device/device_layout.h"
#include "sandbox/device/device_nodes.h"
#include "sandbox/device/device_tree.h"
#include "sandbox/device/mounts.h"
#include "sandbox/device/namespaces.h"
#include "sandbox/device/overlay_root.h"
#include "sandbox/device/proc_and_sys.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

// A private folder hides the machine's folder of the same path.
void RefusePrivateFolders(const std::vector<BindFolder>& writable) {
    for (const BindFolder& folder : writable) {
        const fs::path own = PrivateFolderOf(folder.path);
        if (!own.empty() && !CanStayVisible(folder.path)) {
            throw Failure(
                folder.path.string() + " cannot stay writable",
                "give --writable another folder; the device has a " + own.string() + " of its own");
        }
    }
}

void ProtectMachine(const std::vector<BindFolder>& writable) {
    if (std::ranges::find(writable, "/", &BindFolder::path) != writable.end()) {
        throw Failure("the root folder cannot stay writable", "give --writable a folder below /");
    }
    MakeReadOnly("/");
}

std::vector<BindFolder> OpenWritable(const DeviceOptions& options) {
    std::vector<BindFolder> writable = OpenBindFolders(options.writable);
    RefusePrivateFolders(writable);
    if (options.protect_machine) {
        ProtectMachine(writable);
    }
    return writable;
}

void CopyMachine(const DeviceLayout& layout, DeviceTree& tree) {
    for (const fs::path& folder : EnterOverlayRoot()) {
        tree.AddFileSystem(folder);
    }
    RemoveMachineContents(layout);
}

void ShowWritable(const std::vector<BindFolder>& writable, const DeviceLayout& layout) {
    BindMountFolders(writable, [&layout](const fs::path& path) {
        return !IsHidden(path, layout) && !layout.tmpfs_folders.contains(path);
    });
}

// The writable folders come last, so that a bind folder inside one of them is writable, too.
void ShowHidden(const std::vector<BindFolder>& bind_folders,
                const std::vector<BindFolder>& writable, const DeviceLayout& layout) {
    const auto is_hidden = [&layout](const fs::path& path) { return IsHidden(path, layout); };
    BindMountFolders(bind_folders, is_hidden);
    BindMountFolders(writable, is_hidden);
}

void MountKernelFolders(const DeviceOptions& options, const std::vector<DeviceNode>& nodes,
                        DeviceTree& tree) {
    if (options.own_processes) {
        MountProc(options.protect_machine);
    }
    MountSys();
    MountDeviceNodes(nodes);
    tree.AddFileSystem("/dev");
}

// A current folder survives a mount over it. Changing to the same path enters the new mount.
void ChangeFolder(const fs::path& folder) {
    if (folder.empty() || chdir(folder.c_str()) == -1) {
        fs::current_path("/");
    }
}

}  // namespace

void GiveUpPrivileges() {
    if (!IsPrivileged()) {
        ClearMachineCapabilities();
        EnterUserNamespace();
    }
    DropMachineCapabilities();
}

void EnterDevice(const DeviceOptions& options) {
    std::error_code no_folder;
    const fs::path here = fs::current_path(no_folder);
    const DeviceLayout layout = MakeDeviceLayout(options.rootfs, options.files,
                                                 options.hidden_files, options.missing_folders);
    GiveUpPrivileges();
    EnterPrivateNamespaces();

    const std::vector<BindFolder> writable = OpenWritable(options);
    const std::vector<BindFolder> bind_folders = OpenBindFolders(options.bind_folders);
    const std::vector<DeviceNode> nodes = OpenDeviceNodes();
    DeviceTree tree;
    if (options.copy_machine) {
        CopyMachine(layout, tree);
    }
    ShowWritable(writable, layout);
    MountKernelFolders(options, nodes, tree);
    MountTmpfsFolders(layout, tree);
    ShowHidden(bind_folders, writable, layout);
    MakeFoldersAndFiles(layout, tree);
    ChangeFolder(here);
}

}  // namespace sandbox
