// device.cpp - moves a process onto a device of its own, step by step.
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

void ProtectMachine(const std::vector<KeptFolder>& writable) {
    if (std::ranges::find(writable, "/", &KeptFolder::path) != writable.end()) {
        throw Failure("the machine as a whole cannot stay writable");
    }
    MakeReadOnly("/");
}

void ShowWritable(const std::vector<KeptFolder>& writable, const Plan& plan) {
    ShowFolders(writable, [&plan](const fs::path& path) {
        return !IsHidden(path, plan) && !plan.places.contains(path);
    });
}

// The writable ones come last: a kept folder within one of them is to be writable, too.
void ShowHidden(const std::vector<KeptFolder>& kept, const std::vector<KeptFolder>& writable,
                const Plan& plan) {
    const auto is_hidden = [&plan](const fs::path& path) { return IsHidden(path, plan); };
    ShowFolders(kept, is_hidden);
    ShowFolders(writable, is_hidden);
}

// A process keeps the folder it stands in even when another one covers it: step into that one.
void StepInto(const fs::path& folder) {
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
    const Plan plan = MakePlan(options.rootfs, options.files);
    GiveUpPrivileges();
    EnterPrivateNamespaces();

    const std::vector<KeptFolder> writable = HoldFolders(options.writable);
    if (options.protect_machine) {
        ProtectMachine(writable);
    }
    const std::vector<KeptFolder> kept = HoldFolders(options.keep);
    const std::vector<DeviceNode> nodes = HoldDeviceNodes();
    DeviceTree tree;
    if (options.copy_machine) {
        for (const fs::path& folder : EnterOverlayRoot()) {
            tree.Adopt(folder);
        }
        RemoveMachineContents(plan);
    }
    ShowWritable(writable, plan);
    if (options.own_processes) {
        MountProcesses(options.protect_machine);
    }
    MountDevices();
    MountDeviceNodes(nodes);
    tree.Adopt("/dev");

    CoverPlaces(plan, tree);
    ShowHidden(kept, writable, plan);
    MakeContents(plan, tree);
    StepInto(here);
}

}  // namespace sandbox
