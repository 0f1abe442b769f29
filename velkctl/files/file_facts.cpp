// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_facts.cpp - age, kind and removal of a file that should not be there.
#include "velkctl/files/file_facts.h"

#include <algorithm>
#include <ctime>

#include <unistd.h>

#include "velkctl/text/duration.h"

namespace velkctl {
namespace {

// A sticky folder does not count as safe: everybody may make a file there.
bool IsChangedByRootOnly(const std::string& path, mode_t kind) {
    struct stat facts {};
    return lstat(path.c_str(), &facts) == 0 && (facts.st_mode & S_IFMT) == kind &&
           facts.st_uid == 0 && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

std::string AgeOf(const struct stat& facts) {
    // A clock that was set back since would make it negative.
    return FormatDuration(std::max(0LL, static_cast<long long>(time(nullptr) - facts.st_mtime)));
}

std::string KindOf(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return "a file";
        case S_IFLNK:
            return "a symbolic link";
        case S_IFDIR:
            return "a folder";
        case S_IFIFO:
            return "a FIFO";
        case S_IFSOCK:
            return "a socket";
        default:
            return "a device";
    }
}

bool MayRemove(const std::string& path, const struct stat& facts) {
    const std::string name = path.substr(0, path.rfind('/'));
    struct stat folder {};
    if (geteuid() == 0 || stat(name.c_str(), &folder) == -1) {
        return true;
    }
    return (folder.st_mode & S_ISVTX) == 0 || facts.st_uid == geteuid() ||
           folder.st_uid == geteuid();
}

bool OnlyRootCanChange(const std::string& path) {
    if (!path.starts_with('/')) {
        return false;
    }
    for (size_t slash = 0; slash != std::string::npos; slash = path.find('/', slash + 1)) {
        // A slash at its end would have lstat(2) follow a link.
        if (!IsChangedByRootOnly(slash == 0 ? "/" : path.substr(0, slash), S_IFDIR)) {
            return false;
        }
    }
    return IsChangedByRootOnly(path, S_IFREG);
}

std::string RemoveCommand(const std::string& path, const struct stat& facts) {
    return (S_ISDIR(facts.st_mode) ? "rm -r " : "rm ") + path;
}

}  // namespace velkctl
