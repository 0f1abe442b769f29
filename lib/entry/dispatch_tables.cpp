// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dispatch_tables.cpp - the function of each command, and the interfaces that it takes.
#include "lib/entry/dispatch_tables.h"

#include <array>

#include "velk/dhcp.h"
#include "velk/frame.h"
#include "velk/identity.h"
#include "velk/ipconf.h"
#include "velk/ntp.h"
#include "velk/request.h"
#include "velk/webup.h"
#include "velk/wired.h"
#include "velk/wlan.h"

namespace velk {
namespace {

constexpr uint8_t kYes = 1;
constexpr uint8_t kNo = 0;

constexpr auto kGetRows = std::to_array<CommandEntry>({
    // id, no interface, eth0, eth1, spare, handler
    {VELK_CMD_ADMINISTRATOR, kYes, kNo, kNo, 0, GetSettingFile},
    {VELK_CMD_LOCATION, kYes, kNo, kNo, 0, GetSettingFile},
    {VELK_CMD_NTP, kYes, kNo, kNo, 0, GetNtp},
    {VELK_CMD_DHCP_NTP, kYes, kNo, kNo, 0, GetDhcp},
    {VELK_CMD_NTP_SERVER, kYes, kNo, kNo, 0, GetNtp},
    {VELK_CMD_NTP_RESULT, kYes, kNo, kNo, 0, GetNtp},
    {VELK_CMD_MAC_ADDRESS, kNo, kYes, kYes, 0, GetIoctl},
    {VELK_CMD_LINK_SPEED, kNo, kYes, kNo, 0, GetIoctl},
    {VELK_CMD_IP_METHOD, kNo, kYes, kYes, 0, GetInterfaces},
    {VELK_CMD_APIPA, kNo, kYes, kYes, 0, GetInterfaces},
    {VELK_CMD_IP_ADDRESS, kNo, kYes, kYes, 0, GetInterfaces},
    {VELK_CMD_NETMASK, kNo, kYes, kYes, 0, GetInterfaces},
    {VELK_CMD_GATEWAY, kNo, kYes, kYes, 0, GetInterfaces},
    {VELK_CMD_DHCP_DNS, kNo, kYes, kYes, 0, GetDhcp},
    {VELK_CMD_DNS, kNo, kYes, kYes, 0, GetDns},
    {VELK_CMD_HARDWARE_VERSION, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_SOFTWARE_VERSION, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_STANDARD, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_STANDARDS_ENABLED, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_SERVICE_SET, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_SSID, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_CHANNEL, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_REGION, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_ENCRYPTION, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_AUTHENTICATION, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_WEP_KEY_1, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_WEP_KEY_2, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_WEP_KEY_3, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_WEP_KEY_4, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_WEP_DEFAULT_KEY, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_PSK, kNo, kNo, kYes, 0, GetWlanConf},
    {VELK_CMD_RATE, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_ACCESS_POINT, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_SIGNAL, kNo, kNo, kYes, 0, GetWlanState},
    {VELK_CMD_WEB_UPDATE, kYes, kNo, kNo, 0, GetWebUp},
});

constexpr auto kSetRows = std::to_array<CommandEntry>({
    // id, no interface, eth0, eth1, spare, handler
    {VELK_CMD_ADMINISTRATOR, kYes, kNo, kNo, 0, SetSettingFile},
    {VELK_CMD_LOCATION, kYes, kNo, kNo, 0, SetSettingFile},
    {VELK_CMD_NTP, kYes, kNo, kNo, 0, SetNtp},
    {VELK_CMD_DHCP_NTP, kYes, kNo, kNo, 0, SetDhcp},
    {VELK_CMD_NTP_SERVER, kYes, kNo, kNo, 0, SetNtp},
    {VELK_CMD_LINK_SPEED, kNo, kYes, kNo, 0, SetIoctl},
    {VELK_CMD_IP_METHOD, kNo, kYes, kYes, 0, SetInterfaces},
    {VELK_CMD_DHCP_NOTICE, kNo, kYes, kNo, 0, SetInterfaces},
    {VELK_CMD_APIPA, kNo, kYes, kYes, 0, SetInterfaces},
    {VELK_CMD_IP_ADDRESS, kNo, kYes, kYes, 0, SetInterfaces},
    {VELK_CMD_NETMASK, kNo, kYes, kYes, 0, SetInterfaces},
    {VELK_CMD_GATEWAY, kNo, kYes, kYes, 0, SetInterfaces},
    {VELK_CMD_DHCP_DNS, kNo, kYes, kYes, 0, SetDhcp},
    {VELK_CMD_DNS, kNo, kYes, kYes, 0, SetDns},
    {VELK_CMD_STANDARDS_ENABLED, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_SERVICE_SET, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_SSID, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_CHANNEL, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_ENCRYPTION, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_AUTHENTICATION, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEP_KEY_1, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEP_KEY_2, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEP_KEY_3, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEP_KEY_4, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEP_DEFAULT_KEY, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_PSK, kNo, kNo, kYes, 0, SetWlanConf},
    {VELK_CMD_WEB_UPDATE, kYes, kNo, kNo, 0, SetWebUp},
});

constexpr auto kRestartRows = std::to_array<CommandEntry>({
    // id, no interface, eth0, eth1, spare, handler
    {VELK_CMD_RESTART, kNo, kYes, kYes, 0, Restart},
});

}  // namespace

constinit const std::span<const CommandEntry> kGetTable = kGetRows;
constinit const std::span<const CommandEntry> kSetTable = kSetRows;
constinit const std::span<const CommandEntry> kRestartTable = kRestartRows;

}  // namespace velk
