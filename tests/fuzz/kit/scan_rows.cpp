// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scan_rows.cpp - the gets that read files and tools' output, for the fuzz target scans.
#include "fuzz/kit/scan_rows.h"

#include "fuzz/kit/file_answers.h"
#include "fuzz/kit/tool_answers.h"
#include "support/paths.h"
#include "velk.h"

namespace fuzz {
namespace {

using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kNtpLog;
using testkit::kResolverFile;

}  // namespace

const std::vector<ScanRow> kScanRows = {
    {VELK_CMD_ADMINISTRATOR, false, {kIdentityFile}, Form::kText, 0, AdministratorFrom},
    {VELK_CMD_LOCATION, false, {kIdentityFile}, Form::kText, 0, LocationFrom},
    {VELK_CMD_NTP, false, {kCrontab}, Form::kByte, 2, NtpMethodFrom},
    {VELK_CMD_DHCP_NTP, false, {kDhcpConfigFile}, Form::kByte, 2, DhcpNtpFrom},
    {VELK_CMD_NTP_SERVER, false, {kCrontab}, Form::kText, 0, NtpServerFrom},
    {VELK_CMD_NTP_RESULT, false, {kNtpLog}, Form::kByte, 2, NtpResultFrom},
    {VELK_CMD_WEB_UPDATE, false, {kCrontab}, Form::kSchedule, 0, ScheduleFrom},
    {VELK_CMD_IP_METHOD, true, {kInterfacesFile}, Form::kByte, 2, IpMethodFrom},
    {VELK_CMD_APIPA, true, {kExitHooks}, Form::kByte, 2, ApipaFrom},
    {VELK_CMD_IP_ADDRESS, true, {kInterfacesFile, "ifconfig"}, Form::kText, 0, IpAddressFrom},
    {VELK_CMD_DHCP_DNS, true, {kDhcpConfigFile}, Form::kByte, 2, DhcpDnsFrom},
    {VELK_CMD_DNS, true, {kResolverFile}, Form::kServers, 0, DnsFrom},
    {VELK_CMD_LINK_SPEED, true, {"sudo ethtool"}, Form::kByte, 5, LinkSpeedFrom},
    {VELK_CMD_GATEWAY, true, {kRoutes}, Form::kGateway, 0, GatewayFrom},
    {VELK_CMD_NETMASK, true, {kInterfacesFile, "ifconfig"}, Form::kText, 0, NetmaskFrom},
};

}  // namespace fuzz
