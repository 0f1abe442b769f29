// proc_and_sys.cpp - the kernel's own file trees, of the device's namespaces instead of the
// machine's.
#include "sandbox/device/proc_and_sys.h"

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mount.h>

#include "lib/base/unique_fd.h"
#include "sandbox/device/mounts.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kNetworkSettings[] = "/proc/sys/net";

bool IsProcess(const fs::path& path) {
    return isdigit(static_cast<unsigned char>(path.filename().native().front())) != 0;
}

// Folders, and files that somebody may write. Links lead to processes or to other entries.
bool ReachesMachine(const fs::directory_entry& entry) {
    constexpr fs::perms kWritable =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const fs::file_status status = entry.symlink_status();
    return !IsProcess(entry.path()) && !fs::is_symlink(status) &&
           (fs::is_directory(status) || (status.permissions() & kWritable) != fs::perms::none);
}

std::vector<std::string> MachineEntries() {
    std::vector<std::string> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        if (ReachesMachine(entry)) {
            entries.push_back(entry.path());
        }
    }
    return entries;
}

velk::UniqueFd HoldEntry(const std::string& path) {
    velk::UniqueFd held = Hold(AT_FDCWD, path);
    if (held.get() == -1) {
        Fail("cannot take hold of " + path, errno);
    }
    return held;
}

void ProtectMachineEntries() {
    // The settings under here are those of the device's network.
    const velk::UniqueFd network = HoldEntry(kNetworkSettings);
    for (const std::string& entry : MachineEntries()) {
        Attach(HoldEntry(entry), entry);
        MakeReadOnly(entry);
    }
    Attach(network, kNetworkSettings);
}

}  // namespace

void MountProcesses(bool protect) {
    if (!MountKernel("proc", "/proc", 0)) {
        const char* hint =
            errno == EPERM ? " (is a part of /proc covered, as in a container?)" : "";
        Fail(std::string("cannot make /proc private") + hint, errno);
    }
    if (protect) {
        ProtectMachineEntries();
    }
}

void MountDevices() {
    // Without it the device merely sees the names of the machine's interfaces there.
    (void)MountKernel("sysfs", "/sys", MS_RDONLY);
}

}  // namespace sandbox
