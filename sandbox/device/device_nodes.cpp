// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_nodes.cpp - a /dev without the hardware and the log of the machine.
#include "sandbox/device/device_nodes.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolderMode = 0755;
constexpr const char* kNodes[] = {"/dev/null",    "/dev/zero", "/dev/full",   "/dev/random",
                                  "/dev/urandom", "/dev/tty",  "/dev/net/tun"};
constexpr char kConsole[] = "/dev/console";
constexpr std::pair<const char*, fs::perms> kFolders[] = {
    {"/dev/net", fs::perms(kFolderMode)},
    {"/dev/pts", fs::perms(kFolderMode)},
    {velk::kSemaphoreFolder, fs::perms::all | fs::perms::sticky_bit},
};
constexpr std::pair<const char*, const char*> kLinks[] = {
    {"/proc/self/fd", "/dev/fd"}, {"fd/0", "/dev/stdin"},    {"fd/1", "/dev/stdout"},
    {"fd/2", "/dev/stderr"},      {"pts/ptmx", "/dev/ptmx"},
};

void OpenNode(const std::string& machine_path, const std::string& path,
              std::vector<DeviceNode>& nodes) {
    velk::UniqueFd mount_fd = OpenMount(AT_FDCWD, machine_path);
    if (mount_fd.get() == -1 && errno != ENOENT) {
        Fail("cannot open " + machine_path, errno);
    }
    if (mount_fd.get() != -1) {
        nodes.push_back({path, std::move(mount_fd)});
    }
}

// The terminal's own name does not exist among the device's pseudo-terminals. Without any name,
// tty(1) and other programs would not recognise it as a terminal.
void OpenConsole(std::vector<DeviceNode>& nodes) {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (const char* terminal = ttyname(fd); terminal != nullptr) {
            OpenNode(terminal, kConsole, nodes);
            return;
        }
    }
}

void MountNode(const DeviceNode& node) {
    { const std::ofstream mount_point(node.path); }
    AttachMount(node.mount_fd, node.path);
}

void MountPseudoTerminals() {
    if (mount("velk", "/dev/pts", "devpts", MS_NOSUID | MS_NOEXEC,
              "newinstance,ptmxmode=0666,mode=620") == -1) {
        Fail("cannot mount /dev/pts", errno);
    }
}

}  // namespace

std::vector<DeviceNode> OpenDeviceNodes() {
    std::vector<DeviceNode> nodes;
    for (const char* node : kNodes) {
        OpenNode(node, node, nodes);
    }
    OpenConsole(nodes);
    return nodes;
}

void MountDeviceNodes(const std::vector<DeviceNode>& nodes) {
    (void)MountTmpfs("/dev", kFolderMode);
    for (const auto& [folder, mode] : kFolders) {
        fs::create_directory(folder);
        fs::permissions(folder, mode);
    }
    for (const DeviceNode& node : nodes) {
        MountNode(node);
    }
    for (const auto& [target, link] : kLinks) {
        fs::create_symlink(target, link);
    }
    MountPseudoTerminals();
}

}  // namespace sandbox
