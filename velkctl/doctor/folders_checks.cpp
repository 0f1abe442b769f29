// folders_checks.cpp - whether the folders that the library works in are there and have space.
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

constexpr unsigned long long kLeastFree = 64 * 1024;  // bytes, for an edit copy

// Returns findings without a text, one of each folder, with their effect.
Findings AboutFolders() {
    const auto wireless = [](const char* path) {
        return Finding{.subject = "wireless settings",
                       .effect = "can be neither read nor set",
                       .file = path,
                       .affected = WirelessSettings(),
                       .impact = Impact::kSetting};
    };
    return {{.subject = "all settings in files",
             .effect = "cannot be set",
             .file = velk::kEditFolder,
             .affected = EditedSettings(),
             .impact = Impact::kSetting},
            {.subject = "ntp-result",
             .effect = "cannot be cleared when ntp is set to off",
             .file = "/var/libvelk",
             .affected = SettingsHeldIn(velk::kNtpLog)},
            wireless("/tmp"),
            wireless(velk::kSemaphoreFolder)};
}

Findings CheckSpace(const Finding& about) {
    struct statvfs facts {};
    if (statvfs(about.file.c_str(), &facts) == -1 || facts.f_blocks == 0) {
        return {};  // 0: a file system without a limit
    }
    const unsigned long long free = 1ULL * facts.f_bavail * facts.f_frsize;
    const bool has_files = facts.f_files == 0 || facts.f_favail > 0;
    if (free >= kLeastFree && has_files) {
        return {};
    }
    return {about.Problem(
        about.effect,
        "the file system is full: " + (has_files ? std::to_string(free) + " bytes are free"
                                                 : std::string("it takes no more files")),
        "remove files that are not needed there")};
}

Findings CheckFolder(const Finding& about) {
    struct stat facts {};
    const char* path = about.file.c_str();
    if (stat(path, &facts) == -1 || !S_ISDIR(facts.st_mode)) {
        return {about.Problem(about.effect, "the folder is missing", "mkdir -p " + about.file)};
    }
    if (faccessat(AT_FDCWD, path, W_OK | X_OK, AT_EACCESS) == -1) {
        return {about.Problem(about.effect,
                              std::string("this user may not write the folder: ") + strerror(errno),
                              "run the program as a user that may, or let this one write it")};
    }
    return CheckSpace(about);
}

}  // namespace

Findings CheckFolders() {
    Findings findings;
    for (const Finding& about : AboutFolders()) {
        Append(findings, CheckFolder(about));
    }
    return findings;
}

}  // namespace velkctl
