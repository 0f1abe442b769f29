// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_rows.cpp - the sets that edit files, for the fuzz target edits.
#include "fuzz/kit/edit_rows.h"

#include "support/paths.h"
#include "velk.h"

namespace fuzz {
namespace {

using testkit::kClientScript;
using testkit::kClockSetter;
using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kFinishNotice;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kLinkLocalDaemon;
using testkit::kResolverFile;
using testkit::kStartNotice;

const EditedFile kMethodFile = {kInterfacesFile, {"iface eth"}, Change::kMethod};
const EditedFile kAddressFile = {kInterfacesFile, {"address "}, Change::kValue};
const EditedFile kNetmaskFile = {kInterfacesFile, {"netmask "}, Change::kValue};
const EditedFile kGatewayFile = {kInterfacesFile, {"gateway "}, Change::kValue};
const EditedFile kBlocksFile = {kDhcpConfigFile, {""}, Change::kBlock};
const EditedFile kNtpOptionFile = {kDhcpConfigFile, {"ntp-servers", ";"}, Change::kOption};
const EditedFile kDnsOptionFile = {kDhcpConfigFile, {"domain-name-servers", ";"}, Change::kOption};
const EditedFile kScriptFile = {kClientScript, {"make_resolv_conf"}, Change::kSwitch};
const EditedFile kApipaFile = {kExitHooks, {kLinkLocalDaemon}, Change::kSwitch};
const EditedFile kHookedNtpFile = {kExitHooks, {kClockSetter}, Change::kSwitch};
const EditedFile kNoticeFile = {kExitHooks, {kFinishNotice, kStartNotice}, Change::kSwitch};
const EditedFile kNtpFile = {kCrontab, {"ntpdate"}, Change::kSwitch};
const EditedFile kNtpServerFile = {kCrontab, {"ntpdate"}, Change::kServer};
const EditedFile kUpdaterFile = {kCrontab, {"web_contents_updater"}, Change::kMoves};
const EditedFile kAdministratorFile = {kIdentityFile, {"ADMINISTRATOR="}, Change::kValue};
const EditedFile kLocationFile = {kIdentityFile, {"LOCATION="}, Change::kValue};
const EditedFile kServersFile = {kResolverFile, {}, Change::kWhole};

}  // namespace

const std::vector<EditRow> kEditRows = {
    {VELK_CMD_ADMINISTRATOR, false, Value::kText, {kAdministratorFile}, true},
    {VELK_CMD_LOCATION, false, Value::kText, {kLocationFile}, true},
    {VELK_CMD_NTP, false, Value::kByte, {kNtpFile}, true},
    {VELK_CMD_DHCP_NTP, false, Value::kByte, {kNtpOptionFile, kHookedNtpFile}, true},
    {VELK_CMD_NTP_SERVER, false, Value::kText, {kNtpServerFile}, true},
    {VELK_CMD_IP_METHOD, true, Value::kByte, {kMethodFile, kBlocksFile}, true},
    {VELK_CMD_DHCP_NOTICE, true, Value::kByte, {kNoticeFile}, false},
    {VELK_CMD_APIPA, true, Value::kByte, {kApipaFile}, true},
    {VELK_CMD_IP_ADDRESS, true, Value::kText, {kAddressFile}, true},
    {VELK_CMD_NETMASK, true, Value::kText, {kNetmaskFile}, true},
    {VELK_CMD_GATEWAY, true, Value::kText, {kGatewayFile}, true},
    {VELK_CMD_DHCP_DNS, true, Value::kByte, {kDnsOptionFile, kScriptFile}, true},
    {VELK_CMD_DNS, true, Value::kServers, {kServersFile}, true},
    {VELK_CMD_WEB_UPDATE, false, Value::kSchedule, {kUpdaterFile}, true},
};

}  // namespace fuzz
