// lock_holder.cpp - the process that holds the lock between programs that change settings.
#include "velkctl/files/lock_holder.h"

#include <algorithm>
#include <array>
#include <cstdio>

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

std::optional<int> HoldingProcess() {
    struct stat file {};
    if (stat(velk::kLockFile, &file) != 0) {
        return std::nullopt;
    }
    return FlockHolder(ReadTextFile("/proc/locks").bytes, file.st_dev, file.st_ino);
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
    return LockHolder{process, name, *seconds};
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

std::optional<LockHolder> FindLockHolder() {
    const std::optional<int> process = HoldingProcess();
    return process ? Describe(*process) : std::nullopt;
}

std::string DescribeHolder(const LockHolder& holder) {
    return "process " + std::to_string(holder.process) + " (" + Printable(holder.name) + ", " +
           FormatDuration(holder.seconds) + " old)";
}

std::string DescribeLockHolder() {
    const std::optional<int> process = HoldingProcess();
    if (!process) {
        return "";
    }
    if (const std::optional<LockHolder> holder = Describe(*process)) {
        return DescribeHolder(*holder);
    }
    if (HoldingProcess() != process) {
        return "";  // it gave the lock back and ended meanwhile
    }
    return "a child of process " + std::to_string(*process) + ", which has ended";
}

}  // namespace velkctl
