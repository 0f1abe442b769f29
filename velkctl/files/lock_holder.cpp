// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// lock_holder.cpp - the process that holds the lock between programs that change settings.
#include "velkctl/files/lock_holder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/files/text_file.h"
#include "velkctl/text/duration.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

// Returns a file as /proc/locks names it: "fe:00:404740".
std::string FileInLocks(dev_t device, ino_t inode) {
    std::array<char, 64> text{};
    (void)snprintf(text.data(), text.size(), "%02x:%02x:%llu", major(device), minor(device),
                   static_cast<unsigned long long>(inode));
    return text.data();
}

// Returns the process that took the lock, if the kernel still names it.
std::optional<int> FirstHolderOf(const struct stat& file) {
    return FlockHolder(ReadTextFile("/proc/locks").bytes, file.st_dev, file.st_ino);
}

// Returns the names in a folder that are numbers, in order: processes, or descriptors of one.
std::vector<int> NumbersIn(const std::string& folder) {
    std::vector<int> numbers;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (const std::optional<int> number = ParseNumber<int>(name)) {
            numbers.push_back(*number);
        }
    }
    std::ranges::sort(numbers);
    return numbers;
}

// True if a descriptor of the process holds the lock, which another process may have taken.
bool HasLockedDescriptor(int process, const std::string& file) {
    const std::string folder = "/proc/" + std::to_string(process) + "/fdinfo/";
    const std::vector<int> descriptors = NumbersIn(folder);
    return std::ranges::any_of(descriptors, [&](int descriptor) {
        const std::string facts = ReadTextFile(folder + std::to_string(descriptor)).bytes;
        return velk::Contains(facts, "FLOCK") && velk::Contains(facts, " " + file + " ");
    });
}

// Returns the processes that hold the lock by a descriptor that the caller may examine.
std::vector<int> DescriptorHolders(const struct stat& file) {
    const std::string name = FileInLocks(file.st_dev, file.st_ino);
    std::vector<int> processes = NumbersIn("/proc");
    std::erase_if(processes, [&](int process) { return !HasLockedDescriptor(process, name); });
    return processes;
}

// Returns name and age of a process; nothing if it has ended.
std::optional<LockHolder> Describe(int process) {
    const std::string folder = "/proc/" + std::to_string(process);
    std::string name = ReadTextFile(folder + "/comm").bytes;
    const std::optional<long> seconds =
        SecondsRunning(ReadTextFile(folder + "/stat").bytes, ReadTextFile("/proc/uptime").bytes,
                       sysconf(_SC_CLK_TCK));
    if (name.empty() || !seconds) {
        return std::nullopt;
    }
    name.pop_back();  // the end of the line
    return LockHolder{process, name, *seconds, {}};
}

std::optional<struct stat> LockFile(const char* path) {
    struct stat file {};
    return stat(path, &file) == 0 ? std::optional(file) : std::nullopt;
}

}  // namespace

std::optional<int> FlockHolder(std::string_view locks, dev_t device, ino_t inode) {
    const std::string file = FileInLocks(device, inode);
    while (!locks.empty()) {
        std::string_view line = locks.substr(0, locks.find('\n'));
        locks.remove_prefix(std::min(line.size() + 1, locks.size()));
        (void)velk::TakeWord(line);  // a running number
        // A waiting process has "->" before its kind.
        if (velk::TakeWord(line) != "FLOCK") {
            continue;
        }
        (void)velk::TakeWord(line);  // ADVISORY
        (void)velk::TakeWord(line);  // WRITE
        const std::optional<int> process = ParseNumber<int>(velk::TakeWord(line));
        if (velk::TakeWord(line) == file && process.value_or(0) > 0) {
            return process;
        }
    }
    return std::nullopt;
}

std::optional<long> SecondsRunning(std::string_view stat, std::string_view uptime,
                                   long ticks_per_second) {
    constexpr int kFieldsBetween = 19;  // the name's end and the start, see proc(5)
    const size_t name_end = stat.rfind(')');
    if (name_end == std::string_view::npos || ticks_per_second <= 0) {
        return std::nullopt;
    }
    stat.remove_prefix(name_end + 1);
    for (int field = 0; field < kFieldsBetween; ++field) {
        (void)velk::TakeWord(stat);
    }
    const auto start = ParseNumber<long long>(velk::TakeWord(stat));
    const std::string_view up = velk::TakeWord(uptime);  // "1234.56"
    const auto now = ParseNumber<long>(up.substr(0, up.find('.')));
    if (!start || !now) {
        return std::nullopt;
    }
    return std::max(*now - static_cast<long>(*start / ticks_per_second), 0L);
}

std::optional<LockHolder> FindLockHolder(const char* path) {
    const std::optional<struct stat> file = LockFile(path);
    if (!file) {
        return std::nullopt;
    }
    const std::optional<int> taker = FirstHolderOf(*file);
    std::optional<LockHolder> holder = taker ? Describe(*taker) : std::nullopt;
    if (holder) {
        return holder;
    }
    std::vector<int> processes = DescriptorHolders(*file);
    for (const int process : processes) {
        holder = holder ? holder : Describe(process);
    }
    if (holder) {
        std::erase(processes, holder->process);
        holder->others = std::move(processes);
    }
    return holder;
}

std::string DescribeHolder(const LockHolder& holder) {
    std::string others;
    for (const int process : holder.others) {
        others.append(others.empty() ? ", shared with " : ", ").append(std::to_string(process));
    }
    return "process " + std::to_string(holder.process) + " (" + Printable(holder.name) + ", " +
           FormatDuration(holder.seconds) + " old" + others + ")";
}

std::string DescribeLockHolder(const char* path) {
    if (const std::optional<LockHolder> holder = FindLockHolder(path)) {
        return DescribeHolder(*holder);
    }
    const std::optional<struct stat> file = LockFile(path);
    const std::optional<int> taker = file ? FirstHolderOf(*file) : std::nullopt;
    return taker && !Describe(*taker)
               ? "a child of process " + std::to_string(*taker) + ", which has ended"
               : "";
}

}  // namespace velkctl
