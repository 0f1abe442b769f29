// folders_checks.cpp - whether the folders that the library works in are there and have space.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/affected_settings.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/device_files.h"

namespace velkctl {
namespace {

constexpr unsigned long long kLeastFree = 64 * 1024;  // bytes, for an edit copy

struct Folder {
    std::string path;
    Finding about;  // what a finding on it has in common
};

Folder MakeFolder(const std::string& path, Finding about) {
    about.file = path;
    return {path, std::move(about)};
}

std::array<Folder, 4> Folders() {
    const Finding wireless{.subject = "wireless settings",
                           .effect = "can be neither read nor set",
                           .concerns = WirelessSettings(),
                           .hinders = Hinders::kSetting};
    return {
        MakeFolder(velk::kEditFolder, {.subject = "all settings in files",
                                       .effect = "cannot be set",
                                       .concerns = EditedSettings(),
                                       .hinders = Hinders::kSetting}),
        MakeFolder("/var/libvelk", {.subject = "ntp-result",
                                    .effect = "cannot be cleared when ntp is set to off",
                                    .concerns = {{.id = VELK_CMD_NTP_RESULT}}}),
        MakeFolder("/tmp", wireless),
        MakeFolder("/dev/shm", wireless),
    };
}

Findings CheckSpace(const Folder& folder) {
    struct statvfs facts {};
    if (statvfs(folder.path.c_str(), &facts) == -1 || facts.f_blocks == 0) {
        return {};  // 0: a file system without a limit
    }
    const unsigned long long free = 1ULL * facts.f_bavail * facts.f_frsize;
    const bool has_files = facts.f_files == 0 || facts.f_favail > 0;
    if (free >= kLeastFree && has_files) {
        return {};
    }
    Finding finding = folder.about;
    finding.what = has_files
                       ? "the file system is full: " + std::to_string(free) + " bytes are free"
                       : "the file system is full: it takes no more files";
    finding.remedy = "remove what is not needed there";
    return {finding};
}

Findings CheckFolder(const Folder& folder) {
    struct stat facts {};
    if (stat(folder.path.c_str(), &facts) == -1 || !S_ISDIR(facts.st_mode)) {
        Finding finding = folder.about;
        finding.what = "the folder is missing";
        finding.remedy = "mkdir -p " + folder.path;
        return {finding};
    }
    if (faccessat(AT_FDCWD, folder.path.c_str(), W_OK | X_OK, AT_EACCESS) == -1) {
        Finding finding = folder.about;
        finding.what = std::string("this user may not write the folder: ") + strerror(errno);
        finding.remedy = "run the program as a user that may, or let this one write it";
        return {finding};
    }
    return CheckSpace(folder);
}

}  // namespace

Findings CheckFolders() {
    Findings findings;
    for (const Folder& folder : Folders()) {
        Append(findings, CheckFolder(folder));
    }
    return findings;
}

}  // namespace velkctl
