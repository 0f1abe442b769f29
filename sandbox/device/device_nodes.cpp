// device_nodes.cpp - a /dev that reaches no hardware of the machine, nor its log.
#include "sandbox/device/device_nodes.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

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
    {"/dev/shm", fs::perms::all | fs::perms::sticky_bit},
};
constexpr std::pair<const char*, const char*> kLinks[] = {
    {"/proc/self/fd", "/dev/fd"}, {"fd/0", "/dev/stdin"},    {"fd/1", "/dev/stdout"},
    {"fd/2", "/dev/stderr"},      {"pts/ptmx", "/dev/ptmx"},
};

void HoldNode(const std::string& machine_path, const std::string& path,
              std::vector<DeviceNode>& nodes) {
    velk::UniqueFd held = Hold(AT_FDCWD, machine_path);
    if (held.get() == -1 && errno != ENOENT) {
        Fail("cannot take hold of " + machine_path, errno);
    }
    if (held.get() != -1) {
        nodes.push_back({path, std::move(held)});
    }
}

// The terminal's own name means nothing among the device's pseudo-terminals. Without a name, tty(1)
// and others would take it for no terminal.
void HoldTerminal(std::vector<DeviceNode>& nodes) {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (const char* terminal = ttyname(fd); terminal != nullptr) {
            HoldNode(terminal, kConsole, nodes);
            return;
        }
    }
}

void ShowNode(const DeviceNode& node) {
    { const std::ofstream mount_point(node.path); }
    Attach(node.held, node.path);
}

void MountTerminals() {
    if (mount("velk", "/dev/pts", "devpts", MS_NOSUID | MS_NOEXEC,
              "newinstance,ptmxmode=0666,mode=620") == -1) {
        Fail("cannot make terminals private", errno);
    }
}

}  // namespace

std::vector<DeviceNode> HoldDeviceNodes() {
    std::vector<DeviceNode> nodes;
    for (const char* node : kNodes) {
        HoldNode(node, node, nodes);
    }
    HoldTerminal(nodes);
    return nodes;
}

void MountDeviceNodes(const std::vector<DeviceNode>& nodes) {
    (void)MountMemory("/dev", kFolderMode);
    for (const auto& [folder, mode] : kFolders) {
        fs::create_directory(folder);
        fs::permissions(folder, mode);
    }
    for (const DeviceNode& node : nodes) {
        ShowNode(node);
    }
    for (const auto& [target, link] : kLinks) {
        fs::create_symlink(target, link);
    }
    MountTerminals();
}

}  // namespace sandbox
