// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// image_root.cpp - paths of a device in the root folder of an image.
#include "velkctl/files/image_root.h"

#include <algorithm>
#include <array>
#include <climits>

#include <unistd.h>

namespace velkctl {
namespace {

// As many as the kernel follows; see path_resolution(7).
constexpr int kMostLinks = 40;

// Returns the target of a symbolic link; empty for any other path.
std::string LinkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<size_t>(length)) : std::string();
}

std::string TakeName(std::string& path) {
    const size_t end = std::min(path.find('/'), path.size());
    std::string name = path.substr(0, end);
    path.erase(0, end + 1);
    return name;
}

// Returns the folder of a path; that of the root is the root.
std::string ParentOf(const std::string& path) {
    return path.empty() ? path : path.substr(0, path.rfind('/'));
}

}  // namespace

std::string PathInRoot(const std::string& root, std::string_view path) {
    std::string left(path);
    std::string resolved;
    int links = 0;
    while (!left.empty()) {
        const std::string name = TakeName(left);
        if (name.empty() || name == ".") {
            continue;
        }
        if (name == "..") {
            resolved = ParentOf(resolved);
            continue;
        }
        const std::string parent = resolved;
        resolved.append("/").append(name);
        const std::string target = LinkTarget(root + resolved);
        if (target.empty()) {
            continue;
        }
        if (++links > kMostLinks) {
            return "";
        }
        resolved = target.front() == '/' ? "" : parent;
        left.insert(0, "/").insert(0, target);
    }
    return root + resolved;
}

}  // namespace velkctl
