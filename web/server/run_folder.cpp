// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// run_folder.cpp - the folder in memory that keeps sessions, jobs and failed logins.
#include "web/server/run_folder.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"

namespace velkweb {
namespace {

constexpr mode_t kPrivateFolder = 0700;
constexpr mode_t kPrivateFile = 0600;

bool IsPrivateFolder(const char* path) {
    struct stat facts {};
    return lstat(path, &facts) == 0 && S_ISDIR(facts.st_mode) && facts.st_uid == geteuid() &&
           (facts.st_mode & 0777) == kPrivateFolder;
}

bool MakePrivateFolder(const std::string& path) {
    (void)mkdir(path.c_str(), kPrivateFolder);
    return IsPrivateFolder(path.c_str());
}

velk::UniqueFd OpenLockFile(const std::string& path) {
    return velk::UniqueFd(
        open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kPrivateFile));
}

velk::UniqueFd Locked(const std::string& path, int operation) {
    velk::UniqueFd fd = OpenLockFile(path);
    while (fd.get() >= 0 && flock(fd.get(), operation) != 0) {
        if (errno != EINTR) {
            fd.Reset();
        }
    }
    return fd;
}

}  // namespace

bool PrepareRunFolder() {
    return MakePrivateFolder(kRunFolder) && MakePrivateFolder(RunPath("sessions")) &&
           MakePrivateFolder(RunPath("jobs"));
}

std::string RunPath(std::string_view name) {
    return std::string(kRunFolder).append("/").append(name);
}

std::optional<std::string> ReadFileText(const std::string& path, size_t limit) {
    const velk::UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (fd.get() < 0) {
        return std::nullopt;
    }
    std::string text(limit + 1, '\0');
    size_t length = 0;
    while (length < text.size()) {
        const ssize_t count = velk::ReadSome(fd.get(), &text[length], text.size() - length);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += static_cast<size_t>(count);
    }
    text.resize(length);
    return length <= limit ? std::optional(std::move(text)) : std::nullopt;
}

bool ReplaceFile(const std::string& path, std::string_view text, bool (*finish)(int fd)) {
    const std::string temporary = path + "." + RandomHex(8);
    const velk::UniqueFd fd(open(
        temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kPrivateFile));
    if (fd.get() < 0) {
        return false;
    }
    if (velk::WriteAll(fd.get(), text) && (finish == nullptr || finish(fd.get())) &&
        rename(temporary.c_str(), path.c_str()) == 0) {
        return true;
    }
    const int error = errno;
    (void)unlink(temporary.c_str());
    errno = error;
    return false;
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code problem;
    for (const auto& entry : std::filesystem::directory_iterator(folder, problem)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

velk::UniqueFd AwaitLock(const std::string& path) {
    return Locked(path, LOCK_EX);
}

velk::UniqueFd AwaitLockFor(const std::string& path, int seconds) {
    constexpr std::chrono::milliseconds kPause{20};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    velk::UniqueFd fd = TryLock(path);
    while (fd.get() < 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kPause);
        fd = TryLock(path);
    }
    return fd;
}

velk::UniqueFd TryLock(const std::string& path) {
    return Locked(path, LOCK_EX | LOCK_NB);
}

std::string DaemonLockPath() {
    return RunPath("daemon.lock");
}

velk::UniqueFd TakePlace(const std::string& name, int places) {
    for (int place = 0; place < places; ++place) {
        velk::UniqueFd fd = TryLock(RunPath(name) + std::to_string(place));
        if (fd.get() >= 0) {
            return fd;
        }
    }
    return velk::UniqueFd();
}

int64_t SecondsSinceBoot() {
    timespec now{};
    (void)clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec;
}

std::string RandomHex(size_t bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string random(bytes, '\0');
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(bytes)) {
        throw std::runtime_error("no random bytes");
    }
    std::string text;
    for (const char byte : random) {
        const auto value = static_cast<unsigned char>(byte);
        text.push_back(kDigits[value >> 4U]);
        text.push_back(kDigits[value & 0xFU]);
    }
    return text;
}

bool IsHex(std::string_view text, size_t length) {
    return text.size() == length && std::ranges::all_of(text, [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

bool IsSameSecret(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) {
        return false;
    }
    unsigned difference = 0;
    for (size_t i = 0; i < one.size(); ++i) {
        difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    }
    return difference == 0;
}

}  // namespace velkweb
