// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// archive_members.cpp - the members of a tar archive, read without the simulated device's reader.
#include "fuzz/kit/archive_members.h"

#include <filesystem>

namespace fuzz {
namespace {

constexpr size_t kBlock = 512;
constexpr char kRoot[] = "root/";

std::string TextAt(std::string_view header, size_t begin, size_t size) {
    const std::string_view field = header.substr(begin, size);
    return std::string(field.substr(0, field.find('\0')));
}

// Returns the number of octal digits alone, which a blank may follow.
std::optional<size_t> SizeIn(std::string_view header) {
    constexpr std::string_view kDigits = "01234567";
    std::string text = TextAt(header, 124, 12);
    text = text.substr(0, text.find(' '));
    if (text.empty() || text.find_first_not_of(kDigits) != std::string::npos) {
        return std::nullopt;
    }
    return std::stoull(text, nullptr, 8);
}

std::string NameIn(std::string_view header) {
    const std::string name = TextAt(header, 0, 100);
    const bool is_ustar = header.substr(257, 6) == std::string_view("ustar\0", 6);
    const std::string prefix = is_ustar ? TextAt(header, 345, 155) : "";
    return prefix.empty() ? name : prefix + "/" + name;
}

bool IsEmpty(std::string_view block) {
    return block.find_first_not_of('\0') == std::string_view::npos;
}

// "./etc//x/" of the archive is "/etc/x" of the device.
std::string PathOf(std::string name) {
    std::filesystem::path path = std::filesystem::path("/" + name).lexically_normal();
    if (!path.has_filename()) {
        path = path.parent_path();
    }
    return path;
}

}  // namespace

std::optional<ArchiveMembers> ReadMembers(std::string_view bytes) {
    ArchiveMembers members;
    bool is_capture = false;
    for (size_t at = 0; at + kBlock <= bytes.size();) {
        const std::string_view header = bytes.substr(at, kBlock);
        const std::optional<size_t> size = SizeIn(header);
        if (IsEmpty(header)) {
            break;
        }
        if (!size) {
            return std::nullopt;
        }
        std::string name = NameIn(header);
        while (name.starts_with("./")) {
            name.erase(0, 2);
        }
        is_capture = is_capture || name.substr(0, name.find_last_not_of('/') + 1) == "capture.json";
        if (is_capture && name.starts_with(kRoot)) {
            name.erase(0, sizeof(kRoot) - 1);
        } else if (is_capture) {
            name.clear();
        }
        at += kBlock;
        if (!name.empty()) {
            const std::string text(bytes.substr(std::min(at, bytes.size()), *size));
            members.insert_or_assign(PathOf(name), ArchiveMember{header[156], text});
        }
        at += (*size + kBlock - 1) / kBlock * kBlock;
    }
    return members;
}

}  // namespace fuzz
