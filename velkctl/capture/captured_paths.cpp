// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// captured_paths.cpp - the files and folders of the device that a capture has.
#include "velkctl/capture/captured_paths.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include <dirent.h>

#include "lib/base/paths.h"
#include "velk/request.h"
#include "velkctl/files/text_file.h"
#include "velkctl/preview/copy_plan.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr bool kKeepsLinks = true;
constexpr std::string_view kLeaseFileEnd = ".leases";

std::string FolderOf(std::string_view path) {
    return std::string(path.substr(0, path.rfind('/')));
}

// Returns the paths of the lease files, in order.
std::vector<std::string> LeaseFiles() {
    std::vector<std::string> paths;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(velk::kLeaseFolder), closedir);
    while (const dirent* entry = folder == nullptr ? nullptr : readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (name.ends_with(kLeaseFileEnd)) {
            paths.push_back(std::string(velk::kLeaseFolder) + "/" + name);
        }
    }
    std::ranges::sort(paths);
    return paths;
}

std::string LinesAboutLink(const std::string& path) {
    const Lines lines = ReadTextFile(path).lines;
    std::string text;
    for (const size_t index : LinesWith(lines, VELK_WIRED_INTERFACE ": link")) {
        text.append(lines[index]);
    }
    return text;
}

// The files that the library makes while it works.
std::vector<std::string> Remains() {
    std::vector<std::string> paths;
    for (const DeviceFile& file : DeviceFiles()) {
        const std::string_view path = file.path;
        if (file.change == Change::kByEdit) {
            paths.push_back(velk::kEditFolder + std::string(path.substr(path.rfind('/'))));
        }
    }
    for (const char* path : {velk::kResultFile, velk::kLockFile, velk::kSemaphoreFile}) {
        paths.emplace_back(path);
    }
    return paths;
}

}  // namespace

std::vector<std::string> CapturedFolders() {
    std::vector<std::string> folders{velk::kEditFolder, velk::kSocketFolder, velk::kSemaphoreFolder,
                                     velk::kLibraryFolder, velk::kLeaseFolder};
    for (const char* file :
         {velk::kInterfacesFile, velk::kCrontab, velk::kSnmpFile, velk::kSupportList}) {
        folders.push_back(FolderOf(file));
    }
    std::ranges::sort(folders);
    return folders;
}

void AddDeviceFiles(Capture& capture) {
    for (const std::string& folder : CapturedFolders()) {
        capture.AddPath(folder);
    }
    std::vector<std::string> files = ChangeableFiles();
    for (const DeviceFile& file : DeviceFiles()) {
        if (file.change == Change::kNever) {
            files.emplace_back(file.path);
        }
    }
    std::ranges::move(LeaseFiles(), std::back_inserter(files));
    std::ranges::sort(files);
    for (const std::string& file : files) {
        capture.AddPath(file);
    }
    for (const std::string& file : Remains()) {
        capture.AddPath(file, kKeepsLinks);
    }
    for (const char* number : {"0", "1"}) {
        const std::string path = std::string(velk::kSyslogPrefix) + number;
        capture.AddPart(path, LinesAboutLink(path));
    }
}

}  // namespace velkctl
