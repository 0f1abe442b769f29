// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// files_checks.cpp - checks that the files and folders of the library exist and can be written.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

// The effect on the settings of a file that cannot be used.
struct Loss {
    std::string_view path;
    std::string_view effect;
    Severity severity = Severity::kProblem;
    Impact impact = Impact::kNothing;
};

constexpr Loss kEverything{"", "can be neither read nor set", Severity::kProblem, Impact::kBoth};

// Files that hold no setting themselves.
constexpr std::array<Loss, 3> kLosses{{
    {velk::kSnmpFile, "do not reach the SNMP agent"},
    {velk::kSupportList, "are not recognised, except the built-in one", Severity::kWarning},
    {velk::kUsbDevices, "are never found", Severity::kWarning},
}};

// Missing files. The library makes the resolver's file, and reads some settings without the others.
constexpr std::array<Loss, 3> kLossesByAbsence{{
    {velk::kDhcpConfigFile, "cannot be set", Severity::kProblem, Impact::kBoth},
    {velk::kClientScript, "cannot be set", Severity::kProblem, Impact::kSetting},
    {velk::kResolverFile, "cannot be read until it is set", Severity::kWarning, Impact::kReading},
}};

constexpr unsigned long long kLeastFree = 64 * 1024;  // bytes, for an edit copy

Loss LossOf(std::string_view path, std::span<const Loss> losses, const Loss& otherwise) {
    const Loss* loss = velk::FindRow(losses, path, &Loss::path);
    return loss == nullptr ? otherwise : *loss;
}

Finding AboutFile(const DeviceFile& file, const Loss& loss) {
    return {.severity = loss.severity,
            .subject = file.subject,
            .effect = std::string(loss.effect),
            .file = file.path,
            .remedy = "put the device's own file in its place",
            .affected = file.holds,
            .impact = loss.impact};
}

std::string Refusal(std::string_view action, int error) {
    return std::string("this user may not ").append(action).append(": ") + strerror(error);
}

std::string WritingRemedy(const std::string& path, int error) {
    switch (error) {
        case EROFS:
            return "mount it writable";
        case EPERM:  // also for root
            return "chattr -i " + path;
        default:
            return "run the program as a user who may write it, or let this user write it";
    }
}

Findings CheckWriting(const Finding& about) {
    if (faccessat(AT_FDCWD, about.file.c_str(), W_OK, AT_EACCESS) == 0) {
        return {};
    }
    const int error = errno;
    return {about.With(Impact::kSetting)
                .Problem("cannot be set", Refusal("write the file", error),
                         WritingRemedy(about.file, error))};
}

Findings CheckText(const DeviceFile& file, Finding about, const TextFile& text) {
    const bool is_written = file.change == Change::kByEdit || file.change == Change::kWhole;
    Findings findings = is_written ? CheckWriting(about) : Findings();
    about.effect = "may be read and set wrongly";
    if (text.bytes.find('\0') != std::string::npos) {
        findings.push_back(about.Because("the file has NUL bytes, so it is not text"));
    }
    // The other files are read word by word, or number by number.
    const size_t count = CountCarriageReturns(text.lines);
    if (file.change == Change::kByEdit && count > 0) {
        findings.push_back(about.With(Impact::kReading)
                               .Because(std::to_string(count) + " of its " +
                                            std::to_string(text.lines.size()) +
                                            " lines end with CR LF",
                                        "sed -i 's/[[:cntrl:]]$//' " + about.file));
    }
    return findings;
}

Finding Unreadable(const DeviceFile& file, const Finding& about, int error) {
    const std::string reason = Refusal("read the file", error);
    return file.change == Change::kBySudo
               ? about.Warning("may not reach the SNMP agent", reason + "; not examined",
                               "run the doctor as a user who may read it")
               : about.Because(
                     reason, "run the program as a user who may read it, or let this user read it");
}

Findings CheckFile(const DeviceFile& file) {
    const Loss loss = LossOf(file.path, kLosses, kEverything);
    const Finding about = AboutFile(file, loss);
    const TextFile text = ReadTextFile(file.path);
    switch (text.state) {
        case FileState::kText:
            return CheckText(file, about, text);
        case FileState::kMissing:
            return {AboutFile(file, LossOf(file.path, kLossesByAbsence, loss))
                        .Because("the file is missing", "put the device's own file there")};
        case FileState::kNotRegular:
            return {about.Because("a folder, a FIFO or a device is in its place")};
        case FileState::kUnreadable:
            return {Unreadable(file, about, text.error)};
        case FileState::kTooLarge:
            return {AboutFile(file, {"", "cannot be examined", loss.severity})
                        .Because("the file is larger than 1 MiB")};
    }
    return {};
}

// Returns findings without a text, one of each folder, with their effect.
Findings AboutFolders() {
    Finding results = About(SettingsHeldIn(velk::kNtpLog), velk::kLibraryFolder, Impact::kNothing);
    results.effect = "cannot be cleared when ntp is set to off";
    Finding link = About(SettingsReadWith(kLinkTool), velk::kEditFolder, Impact::kReading);
    link.effect = "cannot be read";
    return {{.subject = "all settings in files",
             .effect = "cannot be set",
             .file = velk::kEditFolder,
             .affected = EditedSettings(),
             .impact = Impact::kSetting},
            link,
            results,
            AboutWireless("/tmp"),
            AboutWireless(velk::kSemaphoreFolder)};
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
    const std::string rest =
        has_files ? std::to_string(free) + " bytes are free" : "no more files can be made";
    return {about.Because("the file system is full: " + rest,
                          "remove files that are not needed there")};
}

Findings CheckFolder(const Finding& about) {
    struct stat facts {};
    const char* path = about.file.c_str();
    if (stat(path, &facts) == -1 || !S_ISDIR(facts.st_mode)) {
        return {about.Because("the folder is missing", "mkdir -p " + about.file)};
    }
    if (faccessat(AT_FDCWD, path, W_OK | X_OK, AT_EACCESS) == -1) {
        return {
            about.Because(Refusal("write the folder", errno),
                          "run the program as a user who may write it, or let this user write it")};
    }
    return CheckSpace(about);
}

}  // namespace

Findings CheckFiles() {
    return FindingsOfEach(DeviceFiles(), CheckFile);
}

// A file or two may be missing on a damaged device.
std::string DescribeOtherMachine() {
    const std::vector<DeviceFile>& files = DeviceFiles();
    const auto missing = static_cast<size_t>(std::ranges::count_if(files, [](const auto& file) {
        return ReadTextFile(file.path).state == FileState::kMissing;
    }));
    return missing * 2 <= files.size()
               ? ""
               : "this does not look like the device (" + std::to_string(missing) +
                     " of its files are missing); velk-sandbox makes a simulated one";
}

Findings CheckFolders() {
    return FindingsOfEach(AboutFolders(), CheckFolder);
}

}  // namespace velkctl
