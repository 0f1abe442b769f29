// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sets.cpp - compares each kind of set with copying the same bytes and running the same shell
// lines.
#include <functional>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <syslog.h>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr int kSamples = 50;

struct FileSet {
    const char* name;
    uint32_t id;
    const char* interface;
    std::string data;
    std::vector<std::string> edited;
    std::vector<std::string> lines;  // run after the edits
};

const std::vector<FileSet>& FileSets() {
    static const std::string on(1, VELK_ON);
    static const std::vector<FileSet> sets = {
        {"address", VELK_CMD_IP_ADDRESS, "eth0", "192.168.0.10", {velk::kInterfacesFile}, {}},
        {"gateway", VELK_CMD_GATEWAY, "eth0", "192.168.0.1", {velk::kInterfacesFile}, {}},
        {"method",
         VELK_CMD_IP_METHOD,
         "eth0",
         {VELK_METHOD_STATIC},
         {velk::kInterfacesFile, velk::kDhcpConfigFile},
         {}},
        {"link_local", VELK_CMD_APIPA, "eth0", on, {velk::kExitHooks}, {}},
        {"dhcp_dns",
         VELK_CMD_DHCP_DNS,
         "eth1",
         on,
         {velk::kDhcpConfigFile, velk::kClientScript},
         {}},
        {"dhcp_ntp", VELK_CMD_DHCP_NTP, "", on, {velk::kDhcpConfigFile, velk::kExitHooks}, {}},
        {"dhcp_notice", VELK_CMD_DHCP_NOTICE, "eth0", on, {velk::kExitHooks, velk::kExitHooks}, {}},
        {"link_speed",
         VELK_CMD_LINK_SPEED,
         "eth0",
         {VELK_LINK_AUTO},
         {},
         {"sudo ethtool -s eth0 autoneg on"}},
        {"web_update",
         VELK_CMD_WEB_UPDATE,
         "",
         {VELK_SCHEDULE_DAILY, 0, '0', '8', ':', '3', '0'},
         {velk::kCrontab},
         {}},
        {"ntp", VELK_CMD_NTP, "", on, {velk::kCrontab}, {}},
        {"ntp_server", VELK_CMD_NTP_SERVER, "", "192.168.0.1", {velk::kCrontab}, {}},
        {"administrator",
         VELK_CMD_ADMINISTRATOR,
         "",
         "Robin",
         {velk::kIdentityFile},
         {std::string("sudo sed -i 's/syscontact.*/syscontact Robin/' ") + velk::kSnmpFile,
          std::string("sudo ") + velk::kSnmpScript + " restart > /dev/null 2>&1 || :"}},
    };
    return sets;
}

void AddFileSet(const FileSet& set) {
    const auto by_hand = [set] {
        for (const std::string& path : set.edited) {
            EditByHand(path);
        }
        for (const std::string& line : set.lines) {
            RunLine(line);
        }
    };
    Compare({.name = std::string("set/") + set.name,
             .ours = Timed(Set(set.id, set.interface, set.data)),
             .other = Timed(by_hand),
             .samples = set.lines.empty() ? kSamples : kSamples / 5});  // those lines are slow
}

// A set without a shell line: the lock, a log line and a write in place.
void AddDnsSet() {
    std::string slots = "192.168.0.1";
    slots.resize(16);
    slots += "192.168.0.2";
    const auto by_hand = [] {
        LockByHand(velk::kLockFile);
        syslog(LOG_NOTICE, "VkLibLock indelible");
        WriteByHand(velk::kResolverFile, "nameserver 192.168.0.1\nnameserver 192.168.0.2\n");
    };
    Compare({.name = "set/dns",
             .ours = Timed(Set(VELK_CMD_DNS, "eth0", slots), 50),
             .other = Timed(by_hand, 50)});
}

// A program with 256 MB: starting a shell from it must not copy its page tables.
void AddLargeHost() {
    constexpr size_t kSize = size_t{256} << 20;
    const Measured set = Timed(Set(VELK_CMD_IP_ADDRESS, "eth0", "192.168.0.10"));
    const auto from_large_host = [set] {
        void* memory = mmap(nullptr, kSize, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        if (memory == MAP_FAILED) {
            GiveUp("256 MB");
        }
        const double took = set();
        munmap(memory, kSize);
        return took;
    };
    Compare({.name = "set/from_large_host",
             .ours = from_large_host,
             .other = set,
             .samples = kSamples});
}

}  // namespace

void AddSets() {
    for (const FileSet& set : FileSets()) {
        AddFileSet(set);
    }
    AddDnsSet();
    AddLargeHost();
}

}  // namespace bench
