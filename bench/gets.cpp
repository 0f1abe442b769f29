// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// gets.cpp - compares each kind of get with open, read, search and close by hand on the same file.
#include <cstring>
#include <functional>
#include <string>

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr int kCallsPerSample = 50;
constexpr int kCallsOfNoCost = 2000;

constexpr char kWiredHeader[] = "iface eth0 inet ";

struct FileGet {
    const char* name;
    uint32_t id;
    const char* interface;
    const char* path;
    const char* start;
    const char* key;
};

// The texts searched by hand are those that the library must find in the device's files.
constexpr FileGet kFileGets[] = {
    {"method", VELK_CMD_IP_METHOD, "eth0", velk::kInterfacesFile, "iface eth0 ", "inet "},
    {"address", VELK_CMD_IP_ADDRESS, "eth0", velk::kInterfacesFile, kWiredHeader, "address "},
    {"netmask", VELK_CMD_NETMASK, "eth0", velk::kInterfacesFile, kWiredHeader, "netmask "},
    {"gateway", VELK_CMD_GATEWAY, "eth0", velk::kInterfacesFile, kWiredHeader, "gateway "},
    {"link_local", VELK_CMD_APIPA, "eth0", velk::kExitHooks, "eth0", "avahi-autoipd"},
    {"dns", VELK_CMD_DNS, "eth0", velk::kResolverFile, "nameserver", "nameserver "},
    {"dhcp_dns", VELK_CMD_DHCP_DNS, "eth1", velk::kDhcpConfigFile, "\"eth1\"",
     "domain-name-servers"},
    {"dhcp_ntp", VELK_CMD_DHCP_NTP, "", velk::kDhcpConfigFile, "\"eth1\"", "ntp-servers"},
    {"administrator", VELK_CMD_ADMINISTRATOR, "", velk::kIdentityFile, "ADMINISTRATOR", "="},
    {"ntp", VELK_CMD_NTP, "", velk::kCrontab, "ntpdate", " "},
    {"ntp_server", VELK_CMD_NTP_SERVER, "", velk::kCrontab, "ntpdate", " -u "},
    {"web_update", VELK_CMD_WEB_UPDATE, "", velk::kCrontab, "web_contents", "updater"},
};

void AddFileGet(const FileGet& get) {
    const auto by_hand = [get] {
        char value[VELK_DATA_SIZE];
        FindByHand(get.path, get.start, get.key, value);
    };
    Compare({.name = std::string("get/") + get.name,
             .ours = Timed(Get(get.id, get.interface), kCallsPerSample),
             .other = Timed(by_hand, kCallsPerSample)});
}

void ReadMacByHand() {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    strcpy(request.ifr_name, "eth0");
    if (fd < 0 || ioctl(fd, SIOCGIFHWADDR, &request) != 0) {
        GiveUp("the MAC address of eth0");
    }
    close(fd);
}

void AddKernelGet() {
    Compare({.name = "get/mac",
             .ours = Timed(Get(VELK_CMD_MAC_ADDRESS, "eth0"), kCallsPerSample),
             .other = Timed(ReadMacByHand, kCallsPerSample)});
}

// A get by a tool: its shell line, reading its output, and removing the output.
void AddToolGet(const char* name, const std::function<void()>& call, const std::string& tool) {
    const auto by_hand = [tool] {
        RunLine(tool + " > " + velk::kResultFile);
        char value[VELK_DATA_SIZE];
        FindByHand(velk::kResultFile, "", "", value);
        RunLine(std::string("rm ") + velk::kResultFile);
    };
    Compare({.name = name, .ours = Timed(call), .other = Timed(by_hand), .samples = 50});
}

void GetLiveAddress() {
    char value[VELK_DATA_SIZE] = {};
    if (GetIpAddress({"eth0", VELK_GET, VELK_CMD_IP_ADDRESS, {}}, value) != LIB_VELK_SUCCESS ||
        strcmp(value, "192.168.0.10") != 0) {
        GiveUp("the live address of eth0");
    }
}

// A get that is refused before any file is opened.
void AddRefusal() {
    const auto by_hand = [] {
        char value[VELK_DATA_SIZE];
        FindByHand(velk::kInterfacesFile, kWiredHeader, "address ", value);
    };
    Compare({.name = "get/unknown_id",
             .ours = Timed(Request(VELK_GET, 999, "eth0", {}, LIB_VELK_INVALID_PARAMETER),
                           kCallsOfNoCost),
             .other = Timed(by_hand, kCallsPerSample)});
}

}  // namespace

void AddGets() {
    for (const FileGet& get : kFileGets) {
        AddFileGet(get);
    }
    AddKernelGet();
    AddToolGet("get/live_address", GetLiveAddress, "ifconfig");
    AddToolGet("get/link_speed", Get(VELK_CMD_LINK_SPEED, "eth0"), "sudo ethtool eth0");
    AddRefusal();
}

}  // namespace bench
