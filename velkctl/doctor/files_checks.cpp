// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// files_checks.cpp - checks that the files and folders of the library exist and can be written.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr unsigned long long kLeastFree = 64 * 1024;  // bytes, for an edit copy

// Returns a finding without a text about a file that cannot be used.
Finding AboutFile(const DeviceFile& file) {
    Finding about =
        About(file.holds, file.path, file.holds.empty() ? Impact::kNothing : Impact::kBoth);
    about.severity = file.change == Change::kNever ? Severity::kWarning : Severity::kProblem;
    about.subject = file.subject;
    about.effect = file.loss;
    return about.FixedBy("put the device's own file in its place");
}

// A file that a set writes as a whole needs no repair: the next set makes it.
Finding Missing(const DeviceFile& file, const Finding& about) {
    const bool is_made = file.change == Change::kWhole;
    return about.Of(is_made ? Severity::kWarning : about.severity, file.loss_if_missing)
        .With(is_made ? Impact::kReading : about.impact)
        .Because("the file is missing", "put the device's own file there");
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
    const Finding about = AboutFile(file);
    const TextFile text = ReadTextFile(file.path);
    switch (text.state) {
        case FileState::kText:
            return CheckText(file, about, text);
        case FileState::kMissing:
            return {Missing(file, about)};
        case FileState::kNotRegular:
            return {about.Because("a folder, a FIFO or a device is in its place")};
        case FileState::kUnreadable:
            return {Unreadable(file, about, text.error)};
        case FileState::kTooLarge:
            return {about.With(Impact::kNothing)
                        .Of(about.severity, "cannot be examined")
                        .Because("the file is larger than 1 MiB")};
    }
    return {};
}

Finding AboutFolder(const AffectedSettings& settings, const char* path, Impact impact,
                    std::string_view effect) {
    return About(settings, path, impact).Of(Severity::kProblem, effect);
}

// Returns one finding for each folder, with its effect but no reason yet.
Findings AboutFolders() {
    constexpr std::string_view kLost = "can be neither read nor set";
    return {
        AboutFolder(EditedSettings(), velk::kEditFolder, Impact::kSetting, "cannot be set"),
        AboutFolder(SettingsReadWith(kLinkTool), velk::kEditFolder, Impact::kReading,
                    "cannot be read"),
        AboutFolder(SettingsHeldIn(velk::kNtpLog), velk::kLibraryFolder, Impact::kNothing,
                    "cannot be cleared when ntp is set to off"),
        AboutFolder(WirelessSettings(), velk::kSocketFolder, Impact::kBoth, kLost),
        AboutFolder(WirelessSettings(), velk::kSemaphoreFolder, Impact::kBoth, kLost),
    };
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
