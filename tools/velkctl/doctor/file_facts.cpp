// file_facts.cpp - what there is to say about a file that should not be there.
#include "velkctl/doctor/file_facts.h"

#include <algorithm>
#include <array>
#include <ctime>

#include <unistd.h>

namespace velkctl {
namespace {

struct Unit {
    long long seconds;
    const char* name;
};
constexpr std::array<Unit, 4> kUnits{
    {{24 * 60 * 60, "day"}, {60 * 60, "hour"}, {60, "minute"}, {1, "second"}}};

}  // namespace

std::string InWords(long long seconds) {
    const auto* unit = std::ranges::find_if(
        kUnits, [&](const Unit& candidate) { return seconds >= candidate.seconds; });
    const Unit& used = unit == kUnits.end() ? kUnits.back() : *unit;
    const long long number = seconds / used.seconds;
    return std::to_string(number) + " " + used.name + (number == 1 ? "" : "s");
}

std::string AgeOf(const struct stat& facts) {
    // A clock that was set back since makes it young.
    return InWords(std::max(0LL, static_cast<long long>(time(nullptr) - facts.st_mtime)));
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

std::string RemovalOf(const std::string& path, const struct stat& facts) {
    return (S_ISDIR(facts.st_mode) ? "rm -r " : "rm ") + path;
}

}  // namespace velkctl
