// edit_files.h - the files that sets edit: whose lines are whose, and what a usual file is.
#ifndef TESTS_FUZZ_KIT_EDIT_FILES_H_
#define TESTS_FUZZ_KIT_EDIT_FILES_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

inline constexpr char kInterfaces[] = "/etc/network/interfaces";
inline constexpr char kDhcpConfig[] = "/etc/dhclient.conf";
inline constexpr char kClientScript[] = "/sbin/dhclient-script";
inline constexpr char kExitHooks[] = "/etc/dhclient-exit-hooks";
inline constexpr char kCrontab[] = "/var/cron/tabs/root";
inline constexpr char kSettings[] = "/var/libvelk/libvelk";
inline constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";

enum class Change {
    kSwitch,  // lines gain or lose a "#"
    kWhole,   // lines are rewritten where they stand
    kServer,  // the same, but a server that ends its line takes the line's end with it
    kMoves    // lines come and go
};

struct EditedFile {
    const char* path;
    std::vector<std::string> own;  // a line that holds one of these may change
    Change change;
};

struct Setting {
    uint32_t id;
    std::string interface;
    std::string data;
};

std::string CopyOf(const EditedFile& file);

// Checks that all other lines are as they were, in their order, and own ones changed in their way.
void CheckOnlyOwnLines(const EditedFile& file, std::string_view before, std::string_view after);

// True when the files are such that the setting must be read back as it was set, and setting it
// twice be the same as once. Other files have the same lines edited, but may hold them in forms
// that the reading side sees differently.
bool IsUsual(const Setting& setting, const std::vector<std::string>& files);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_EDIT_FILES_H_
