// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// requests.cpp - the requests of every command.
#include "fault/kit/requests.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "lib/entry/dispatch_tables.h"
#include "support/device_test.h"
#include "velk.h"

namespace fault {
namespace {

using Texts = std::vector<std::string>;

const Texts kSwitches{"\x01", "\x02"};
const Texts kTexts{"O'Neil & Co/IT", ""};
const Texts kWepKeys{"vwxyz", "four"};

// The data for each set and restart. A value that is refused comes last.
const std::map<uint32_t, Texts> kData{
    {VELK_CMD_RESTART, {std::string(1, '\0'), "\x02"}},
    {VELK_CMD_ADMINISTRATOR, kTexts},
    {VELK_CMD_LOCATION, kTexts},
    {VELK_CMD_NTP, {"\x01", "\x02", "\x03"}},
    {VELK_CMD_DHCP_NTP, kSwitches},
    {VELK_CMD_NTP_SERVER, {"10.0.0.123"}},
    {VELK_CMD_WEB_UPDATE,
     {"\x01\x06"
      "00:00",
      "\x02\x01"
      "3:05",
      "\x03\x07"
      "08:30",
      "\x04\x1f"
      "01:30",
      "cc00:00",
      "\x02\x01"
      "12:3a"}},
    {VELK_CMD_IP_METHOD, {"\x01", "\x02", "\x03"}},
    {VELK_CMD_DHCP_NOTICE, kSwitches},
    {VELK_CMD_APIPA, kSwitches},
    {VELK_CMD_IP_ADDRESS, {"10.1.2.3"}},
    {VELK_CMD_NETMASK, {"255.255.0.0"}},
    {VELK_CMD_GATEWAY, {"10.1.2.1", ""}},
    {VELK_CMD_DHCP_DNS, kSwitches},
    {VELK_CMD_DNS, {std::string("10.0.0.53\0\0\0\0\0\0\0", 16) + "10.0.0.54", ""}},
    {VELK_CMD_LINK_SPEED, {"\x01", "\x05", "\x06"}},
    {VELK_CMD_STANDARDS_ENABLED, {"\x02", "\x09"}},
    {VELK_CMD_SERVICE_SET, {"\x02"}},
    {VELK_CMD_SSID, {"office"}},
    {VELK_CMD_CHANNEL, {"\x0d", "\x0e"}},
    {VELK_CMD_ENCRYPTION, {"\x03"}},
    {VELK_CMD_AUTHENTICATION, {"\x02"}},
    {VELK_CMD_WEP_KEY_1, kWepKeys},
    {VELK_CMD_WEP_KEY_2, kWepKeys},
    {VELK_CMD_WEP_KEY_3, kWepKeys},
    {VELK_CMD_WEP_KEY_4, kWepKeys},
    {VELK_CMD_WEP_DEFAULT_KEY, {"\x02"}},
    {VELK_CMD_PSK, {"correct horse battery"}},
};

Group GroupOf(uint32_t type, const char* type_name, uint32_t id, std::string_view interface) {
    const std::string name = std::string(type_name) + " " + std::to_string(id) +
                             (interface.empty() ? "" : " ") + std::string(interface);
    const Texts no_data{""};
    Group group;
    for (const std::string& data : HasData(id) && type != VELK_GET ? kData.at(id) : no_data) {
        group.push_back({name, testkit::MakeRequest(type, id, interface, data)});
    }
    return group;
}

std::vector<Group> GroupsOf(uint32_t type, const char* type_name,
                            std::span<const velk::CommandEntry> table) {
    std::vector<Group> groups;
    for (const velk::CommandEntry& row : table) {
        if (row.no_interface_allowed != 0) {
            groups.push_back(GroupOf(type, type_name, row.command_id, ""));
        }
        if (row.eth0_allowed != 0) {
            groups.push_back(GroupOf(type, type_name, row.command_id, "eth0"));
        }
        if (row.eth1_allowed != 0) {
            groups.push_back(GroupOf(type, type_name, row.command_id, "eth1"));
        }
    }
    return groups;
}

}  // namespace

bool HasData(uint32_t id) {
    return kData.contains(id);
}

std::vector<Group> AllRequests() {
    std::vector<Group> all = GroupsOf(VELK_GET, "get", velk::kGetTable);
    for (const std::vector<Group>& more :
         {SetRequests(), GroupsOf(VELK_RESTART, "restart", velk::kRestartTable)}) {
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

std::vector<Group> SetRequests() {
    return GroupsOf(VELK_SET, "set", velk::kSetTable);
}

std::string TestName(const Group& group) {
    std::string name = group.front().name;
    std::ranges::replace(name, ' ', '_');
    return name;
}

}  // namespace fault
