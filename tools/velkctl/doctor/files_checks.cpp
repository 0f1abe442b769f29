// files_checks.cpp - whether the library's files and folders are there and may be written.
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

constexpr unsigned long long kLeastFree = 64 * 1024;  // bytes, for an edit copy

// How the library changes a file.
enum class Change {
    kNever,
    kByEdit,  // as the calling user, through an edit copy
    kWhole,   // as the calling user; it is made when missing
    kBySudo,
};

struct DeviceFile {
    std::string_view path;
    std::string_view settings;
    Change change;
    Severity if_missing;
    std::string_view effect_if_missing;
};

constexpr std::string_view kUnusable = "can be neither read nor set";

constexpr std::array<DeviceFile, 10> kFiles{{
    {"/etc/network/interfaces", "method, address, netmask and gateway", Change::kByEdit,
     Severity::kProblem, kUnusable},
    {"/etc/dhclient-exit-hooks", "apipa, dhcp-notice and dhcp-ntp", Change::kByEdit,
     Severity::kProblem, kUnusable},
    {"/etc/dhclient.conf", "method, dhcp-dns and dhcp-ntp", Change::kByEdit, Severity::kProblem,
     "cannot be set"},
    {"/sbin/dhclient-script", "dhcp-dns", Change::kByEdit, Severity::kProblem, "cannot be set"},
    {"/etc/resolv.dnsmasq.conf", "dns", Change::kWhole, Severity::kWarning,
     "cannot be read until it is set"},
    {"/var/cron/tabs/root", "ntp, ntp-server and web-update", Change::kByEdit, Severity::kProblem,
     kUnusable},
    {"/var/libvelk/libvelk", "administrator and location", Change::kByEdit, Severity::kProblem,
     kUnusable},
    {"/usr/local/share/etc/snmp/snmpd.conf", "administrator and location", Change::kBySudo,
     Severity::kProblem, "do not reach the SNMP agent"},
    {"/usr/local/share/apps/wlan/supportlist.ini", "wireless adapters", Change::kNever,
     Severity::kWarning, "are not recognised but for the built-in one"},
    {"/proc/bus/usb/devices", "wireless adapters", Change::kNever, Severity::kWarning,
     "are never found"},
}};

bool MayWrite(const std::string& path, int mode) {
    return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

Finding FindingIn(const DeviceFile& file, Severity severity, std::string_view effect,
                  std::string what, std::string remedy) {
    return {severity,         std::string(file.settings), std::string(effect),
            std::move(what),  std::string(file.path),     0,
            std::move(remedy)};
}

// A file that is there and has been read.
Findings CheckWriting(const DeviceFile& file) {
    const bool is_written = file.change == Change::kByEdit || file.change == Change::kWhole;
    if (!is_written || MayWrite(std::string(file.path), W_OK)) {
        return {};
    }
    return {FindingIn(file, Severity::kProblem, "cannot be set",
                      std::string("this user may not write the file: ") + strerror(errno),
                      "run the program as a user that may, or let this one write the file")};
}

Findings CheckFile(const DeviceFile& file) {
    const TextFile text = ReadTextFile(std::string(file.path));
    switch (text.state) {
        case FileState::kText:
            return CheckWriting(file);
        case FileState::kMissing:
            return {FindingIn(file, file.if_missing, file.effect_if_missing, "the file is missing",
                              "put the device's own file there")};
        case FileState::kNotRegular:
            return {FindingIn(file, Severity::kProblem, kUnusable,
                              "a folder, a FIFO or a device stands there",
                              "put the device's own file in its place")};
        case FileState::kUnreadable:
            return {
                FindingIn(file, Severity::kProblem, kUnusable,
                          std::string("this user may not read the file: ") + strerror(text.error),
                          "run the program as a user that may, or let this one read the file")};
        case FileState::kTooLarge:
            return {FindingIn(file, Severity::kWarning, "take long",
                              "more than 1 MiB, not examined",
                              "put the device's own file in its place")};
    }
    return {};
}

struct Folder {
    std::string_view path;
    std::string_view settings;
    std::string_view effect;
};

constexpr std::array<Folder, 4> kFolders{{
    {"/var/tmp", "all settings in files", "cannot be set"},
    {"/var/libvelk", "ntp-result", "cannot be cleared when ntp is set to off"},
    {"/tmp", "wireless settings", "can be neither read nor set"},
    {"/dev/shm", "wireless settings", "can be neither read nor set"},
}};

Finding FindingIn(const Folder& folder, std::string what, std::string remedy) {
    return {Severity::kProblem, std::string(folder.settings), std::string(folder.effect),
            std::move(what),    std::string(folder.path),     0,
            std::move(remedy)};
}

Findings CheckSpace(const Folder& folder) {
    struct statvfs facts {};
    if (statvfs(std::string(folder.path).c_str(), &facts) == -1 || facts.f_blocks == 0) {
        return {};  // 0: a file system without a limit
    }
    const unsigned long long free = 1ULL * facts.f_bavail * facts.f_frsize;
    const bool has_files = facts.f_files == 0 || facts.f_favail > 0;
    if (free >= kLeastFree && has_files) {
        return {};
    }
    return {FindingIn(folder,
                      "the file system is full: " + std::to_string(free) + " bytes are free",
                      "remove what is not needed there")};
}

Findings CheckFolder(const Folder& folder) {
    const std::string path(folder.path);
    struct stat facts {};
    if (stat(path.c_str(), &facts) == -1 || !S_ISDIR(facts.st_mode)) {
        return {FindingIn(folder, "the folder is missing", "mkdir -p " + path)};
    }
    if (!MayWrite(path, W_OK | X_OK)) {
        return {FindingIn(folder,
                          std::string("this user may not write the folder: ") + strerror(errno),
                          "run the program as a user that may, or let this one write it")};
    }
    return CheckSpace(folder);
}

}  // namespace

Findings CheckFiles() {
    Findings findings;
    for (const DeviceFile& file : kFiles) {
        Append(findings, CheckFile(file));
    }
    return findings;
}

Findings CheckFolders() {
    Findings findings;
    for (const Folder& folder : kFolders) {
        Append(findings, CheckFolder(folder));
    }
    return findings;
}

}  // namespace velkctl
