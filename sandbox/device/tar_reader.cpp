// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tar_reader.cpp - reads the members of a tar archive, in the format ustar.
#include "sandbox/device/tar_reader.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr size_t kBlock = 512;
constexpr size_t kMostMembers = 200'000;
constexpr off_t kLargestFile = 1024 * 1024;
constexpr char kPlainTar[] = "pack it with: tar --format=ustar -C FOLDER -cf FILE .";

using Header = std::array<char, kBlock>;

std::string TextOf(const char* field, size_t size) {
    return {field, strnlen(field, size)};
}

// Returns -1 for a field that has no octal digits.
long long NumberOf(const char* field, size_t size) {
    const std::string text = TextOf(field, size);
    char* end = nullptr;
    const long long number = strtoll(text.c_str(), &end, 8);
    return end == text.c_str() ? -1 : number;
}

// The sum of all bytes, those of its own field taken as blanks.
bool HasRightChecksum(const Header& header) {
    constexpr size_t kBegin = 148;
    constexpr size_t kSize = 8;
    long long sum = 0;
    for (size_t i = 0; i < header.size(); ++i) {
        const bool is_own = i >= kBegin && i < kBegin + kSize;
        sum += is_own ? ' ' : static_cast<unsigned char>(header[i]);
    }
    return sum == NumberOf(&header[kBegin], kSize);
}

bool IsZero(const Header& header) {
    return header == Header{};
}

// Returns the path of a header: its prefix, if the format is ustar, and its name.
std::string PathOf(const Header& header) {
    constexpr std::string_view kUstar("ustar\0", 6);
    const std::string name = TextOf(header.data(), 100);
    const bool has_prefix = std::string_view(&header[257], kUstar.size()) == kUstar;
    const std::string prefix = has_prefix ? TextOf(&header[345], 155) : "";
    return prefix.empty() ? name : prefix + "/" + name;
}

std::string WithoutDot(std::string path) {
    while (path.starts_with("./")) {
        path.erase(0, 2);
    }
    while (path.ends_with('/')) {
        path.pop_back();
    }
    return path == "." ? "" : path;
}

bool LeavesRoot(const std::string& path) {
    if (path.starts_with('/')) {
        return true;
    }
    for (const std::filesystem::path& part : std::filesystem::path(path)) {
        if (part == "..") {
            return true;
        }
    }
    return false;
}

TarMember MemberOf(const Header& header) {
    TarMember member;
    const char type = header[156];
    member.type = type == '\0' || type == '7' ? '0' : type;
    member.mode = static_cast<mode_t>(NumberOf(&header[100], 8)) & 07777;
    member.owner = static_cast<uid_t>(NumberOf(&header[108], 8));
    member.group = static_cast<gid_t>(NumberOf(&header[116], 8));
    member.size = static_cast<off_t>(NumberOf(&header[124], 12));
    member.time = static_cast<time_t>(NumberOf(&header[136], 12));
    member.target = TextOf(&header[157], 100);
    return member;
}

}  // namespace

TarReader::TarReader(const std::string& file)
    : name_(file), fd_(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    struct stat facts {};
    if (fd_.get() == -1 || fstat(fd_.get(), &facts) == -1) {
        Fail("cannot read " + name_, errno);
    }
    if (!S_ISREG(facts.st_mode)) {
        throw Failure(name_ + " is neither a file nor a folder");
    }
}

void TarReader::FailAt(const std::string& path, const std::string& problem) const {
    throw Failure(name_ + ": '" + path + "' " + problem);
}

void TarReader::FailAtStart() const {
    throw Failure(name_ + " is no tar archive", "give an uncompressed one");
}

// Returns false at the end of the archive.
bool TarReader::ReadHeader(char* header) {
    const ssize_t size = pread(fd_.get(), header, kBlock, at_);
    if (size == -1) {
        Fail("cannot read " + name_, errno);
    }
    if (at_ == 0 && static_cast<size_t>(size) != kBlock) {
        FailAtStart();
    }
    if (size != 0 && static_cast<size_t>(size) != kBlock) {
        throw Failure(name_ + " is cut");
    }
    return size != 0;
}

std::optional<TarMember> TarReader::Next() {
    Header header{};
    if (!ReadHeader(header.data()) || (at_ != 0 && IsZero(header))) {
        return std::nullopt;
    }
    if (at_ == 0 && !HasRightChecksum(header)) {
        FailAtStart();
    }
    if (!HasRightChecksum(header)) {
        throw Failure(name_ + " is damaged");
    }
    const std::string path = PathOf(header);
    TarMember member = MemberOf(header);
    if (++count_ > kMostMembers) {
        throw Failure(name_ + " has more than " + std::to_string(kMostMembers) + " members");
    }
    if (member.size < 0) {
        FailAt(path, "has no valid size");
    }
    if (member.type == 'x' || member.type == 'L' || member.type == 'K') {
        throw Failure(name_ + " has names that are too long for the format ustar", kPlainTar);
    }
    if (LeavesRoot(path)) {
        FailAt(path, "is outside the root folder");
    }
    member.path = WithoutDot(path);
    member.begin = at_ + static_cast<off_t>(kBlock);
    const auto block = static_cast<off_t>(kBlock);
    at_ = member.begin + (member.size / block + (member.size % block == 0 ? 0 : 1)) * block;
    return member;
}

std::string TarReader::Contents(const TarMember& member) const {
    if (member.size > kLargestFile) {
        FailAt(member.path, "is larger than 1 MiB");
    }
    std::string text(static_cast<size_t>(member.size), '\0');
    const ssize_t size = pread(fd_.get(), text.data(), text.size(), member.begin);
    if (size == -1) {
        Fail("cannot read " + name_, errno);
    }
    if (static_cast<off_t>(size) != member.size) {
        throw Failure(name_ + " is cut");
    }
    return text;
}

}  // namespace sandbox
