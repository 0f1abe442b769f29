// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// mount_points.cpp - the mounts of this process.
#include "velkctl/preview/mount_points.h"

#include <array>
#include <cerrno>
#include <set>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr size_t kPointWord = 4;  // "26 1 8:1 / /home rw,relatime ..."
constexpr size_t kOctalDigits = 3;

struct Flag {
    unsigned long shown;
    unsigned long given;
};

// A mount that came from another user keeps these flags; a change without them is refused.
constexpr std::array<Flag, 6> kKeptFlags{{
    {ST_NOSUID, MS_NOSUID},
    {ST_NODEV, MS_NODEV},
    {ST_NOEXEC, MS_NOEXEC},
    {ST_NOATIME, MS_NOATIME},
    {ST_NODIRATIME, MS_NODIRATIME},
    {ST_RELATIME, MS_RELATIME},
}};

bool IsOctal(char c) {
    return c >= '0' && c <= '7';
}

// The table may be larger than the files that ReadTextFile() takes.
std::string ReadTable() {
    const velk::UniqueFd fd(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = velk::ReadSome(fd.get(), piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<size_t>(count));
    }
    return text;
}

}  // namespace

std::string MountPointIn(std::string_view line) {
    const std::vector<std::string> words = WordsOf(line);
    if (words.size() <= kPointWord) {
        return {};
    }
    const std::string& word = words[kPointWord];
    std::string path;
    for (size_t i = 0; i < word.size(); ++i) {
        const bool is_octal = word[i] == '\\' && i + kOctalDigits < word.size() &&
                              IsOctal(word[i + 1]) && IsOctal(word[i + 2]) && IsOctal(word[i + 3]);
        if (!is_octal) {
            path.push_back(word[i]);
            continue;
        }
        path.push_back(static_cast<char>((word[i + 1] - '0') * 64 + (word[i + 2] - '0') * 8 +
                                         (word[i + 3] - '0')));
        i += kOctalDigits;
    }
    return path;
}

std::vector<std::string> MountPoints() {
    const std::string table = ReadTable();
    std::set<std::string> points;
    for (std::string_view rest = table; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        points.insert(MountPointIn(line));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    points.erase("");
    return {points.begin(), points.end()};
}

bool MakeReadOnly(const std::string& path) {
    struct statvfs facts {};
    if (statvfs(path.c_str(), &facts) == -1) {
        return errno == EACCES || errno == ENOENT;
    }
    unsigned long flags = MS_REMOUNT | MS_BIND | MS_RDONLY;
    for (const Flag& flag : kKeptFlags) {
        flags |= (facts.f_flag & flag.shown) != 0 ? flag.given : 0;
    }
    if (mount("none", path.c_str(), "none", flags, nullptr) == 0) {
        return true;
    }
    // EINVAL: another mount covers it, and with it a part of the path.
    return errno == EACCES || errno == ENOENT || errno == EINVAL;
}

}  // namespace velkctl
