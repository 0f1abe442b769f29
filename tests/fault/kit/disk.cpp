// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk.cpp - the device's files and folders as they are on its disk.
#include "fault/kit/disk.h"

#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/libc_recorder.h"
#include "support/paths.h"

namespace fault {
namespace {

namespace fs = std::filesystem;

// Files in folders that they share with the machine's own.
constexpr std::array kLoneFiles{testkit::kDhcpConfigFile, testkit::kExitHooks,
                                testkit::kResolverFile, testkit::kClientScript};

// The journal comes after the folder that holds it.
constexpr std::array kFolders{"/etc/network", "/usr/local/share/etc/snmp", "/var/cron/tabs",
                              testkit::kLibraryFolder, testkit::kJournalFolder};

std::vector<std::string> PathsIn(const std::string& folder) {
    std::vector<std::string> paths;
    std::error_code missing;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, missing)) {
        paths.push_back(entry.path());
    }
    return paths;
}

std::vector<std::string> AllPaths() {
    std::vector<std::string> paths(kLoneFiles.begin(), kLoneFiles.end());
    for (const char* folder : kFolders) {
        const std::vector<std::string> more = PathsIn(folder);
        paths.insert(paths.end(), more.begin(), more.end());
    }
    return paths;
}

std::vector<std::string> VolatilePaths() {
    std::vector<std::string> paths = PathsIn(testkit::kEditFolder);
    paths.emplace_back(testkit::kOldAddressFile);
    return paths;
}

std::optional<std::pair<FileNumber, DiskFile>> Read(const std::string& path) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) != 0) {
        return std::nullopt;
    }
    const std::string bytes = S_ISREG(facts.st_mode) ? testkit::ReadFile(path) : "";
    return {{FileNumber(facts.st_dev, facts.st_ino),
             {bytes, facts.st_mode, facts.st_uid, facts.st_gid}}};
}

void Write(const std::string& path, const DiskFile& file) {
    if (S_ISDIR(file.mode)) {
        fs::create_directory(path);
    } else {
        testkit::WriteFile(path, file.bytes);
    }
    constexpr mode_t kPermissions = 07777;
    if (chmod(path.c_str(), file.mode & kPermissions) != 0 ||
        lchown(path.c_str(), file.owner, file.group) != 0) {
        throw std::runtime_error("cannot make " + path);
    }
}

}  // namespace

Disk ReadDisk() {
    const testkit::Unrecorded ours;
    Disk disk;
    for (const std::string& path : AllPaths()) {
        if (const auto found = Read(path)) {
            disk.names[path] = found->first;
            disk.files.insert(*found);
        }
    }
    return disk;
}

Tree TreeOf(const Disk& disk) {
    Tree tree;
    for (const auto& [path, file] : disk.names) {
        tree[path] = disk.files.at(file);
    }
    return tree;
}

Tree ReadVolatile() {
    const testkit::Unrecorded ours;
    Tree tree;
    for (const std::string& path : VolatilePaths()) {
        if (const auto found = Read(path); found && S_ISREG(found->second.mode)) {
            tree[path] = found->second;
        }
    }
    return tree;
}

// A folder sorts before its files.
void WriteDisk(const Tree& disk, const Tree& in_memory) {
    const testkit::Unrecorded ours;
    for (const auto& paths : {AllPaths(), VolatilePaths()}) {
        for (const std::string& path : paths) {
            fs::remove_all(path);
        }
    }
    for (const Tree& tree : {disk, in_memory}) {
        for (const auto& [path, file] : tree) {
            Write(path, file);
        }
    }
}

}  // namespace fault
