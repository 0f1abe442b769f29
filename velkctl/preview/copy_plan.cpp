// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// copy_plan.cpp - the files and folders of a private copy, before it is made.
#include "velkctl/preview/copy_plan.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

std::string FolderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

// Returns the target of a symbolic link; any other path as it is.
std::string LinkTarget(const std::string& path) {
    char target[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), target, sizeof(target));
    if (size <= 0) {
        return path;
    }
    const std::string text(target, static_cast<size_t>(size));
    return text.starts_with('/') ? text : FolderOf(path) + "/" + text;
}

// Returns the nearest folder of a path that exists.
std::string NearestFolder(const std::string& path) {
    std::string folder = FolderOf(path);
    while (RealPath(folder).empty()) {
        folder = FolderOf(folder);
    }
    return folder;
}

// Returns the path that a file has, or would have if it was made.
std::string PlaceOf(const std::string& path) {
    if (std::string real = RealPath(path); !real.empty()) {
        return real;
    }
    const std::string target = LinkTarget(path);
    const std::string folder = NearestFolder(target);
    return RealPath(folder) + target.substr(folder == "/" ? 0 : folder.size());
}

bool MayWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

const DeviceFile* FindDeviceFile(const std::string& path) {
    const std::vector<DeviceFile>& files = DeviceFiles();
    const auto found = std::ranges::find(files, path, &DeviceFile::path);
    return found == files.end() ? nullptr : &*found;
}

bool IsChanged(const std::string& path, Change change) {
    const DeviceFile* file = FindDeviceFile(path);
    return file != nullptr && file->change == change;
}

// True for a file that commands may make, remove or replace, not only write. A bind mount of the
// file alone could be written only.
bool NeedsFolder(const PlannedFile& file) {
    const std::string& path = file.image.path;
    const bool exists = access(path.c_str(), F_OK) == 0;
    if (exists != file.image.exists) {
        return true;
    }
    return exists ? path == velk::kNtpLog || IsChanged(path, Change::kBySudo)
                  : IsChanged(path, Change::kWhole);
}

// Nothing can be mounted over the root folder.
void AddFolder(CopyPlan& plan, const std::string& path, bool is_writable) {
    if (path == "/") {
        return;
    }
    PlannedFolder folder{path, {}, is_writable};
    const bool is_known = velk::FindRow(plan.folders, path, &PlannedFolder::path) != nullptr;
    if (!is_known && stat(path.c_str(), &folder.facts) == 0) {
        plan.folders.push_back(std::move(folder));
    }
}

}  // namespace

std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
    return real == nullptr ? "" : real.get();
}

const PlannedFile* CopyPlan::FindFile(const std::string& path) const {
    return velk::FindRow(files, path, &PlannedFile::path);
}

std::vector<std::string> ChangeableFiles() {
    std::vector<std::string> paths;
    for (const DeviceFile& file : DeviceFiles()) {
        if (file.change != Change::kNever) {
            paths.emplace_back(file.path);
        }
    }
    paths.emplace_back(velk::kNtpLog);
    paths.emplace_back(velk::kOldAddressFile);
    return paths;
}

CopyPlan PlanCopy(const std::vector<FileImage>& images) {
    CopyPlan plan;
    plan.edit_folder = RealPath(velk::kEditFolder);
    for (const FileImage& image : images) {
        if (image.path == velk::kOldAddressFile) {
            continue;
        }
        // The tool that changes the file runs as root.
        const bool is_by_sudo = IsChanged(image.path, Change::kBySudo);
        const std::string place = PlaceOf(image.path);
        const std::string folder = NearestFolder(place);
        const bool is_new = image.exists && access(place.c_str(), F_OK) == -1;
        const bool is_writable = is_by_sudo || is_new || MayWrite(image.path);
        plan.files.push_back({image, place, folder, is_writable});
        if (NeedsFolder(plan.files.back())) {
            AddFolder(plan, folder, is_by_sudo || MayWrite(folder));
        }
    }
    std::ranges::sort(plan.folders, {}, &PlannedFolder::path);
    return plan;
}

}  // namespace velkctl
