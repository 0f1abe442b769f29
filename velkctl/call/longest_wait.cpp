// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// longest_wait.cpp - the longest time that commands take, and their reason for waiting.
#include "velkctl/call/longest_wait.h"

#include "lib/base/find_row.h"
#include "lib/base/paths.h"

namespace velkctl {
namespace {

// Link detection runs ethtool once a second for a minute, then reads two logs. Another program that
// keeps its turn costs 15 seconds in the first run of ethtool and for each log.
constexpr int kLinkSeconds = 60 + 3 * 15;
// The library waits for one answer of the wireless daemon for this time.
constexpr int kDaemonSeconds = 60;

constexpr std::string_view kLink = "ethtool to report the link state";
constexpr std::string_view kDaemon = "the wireless daemon to answer";
constexpr std::string_view kLinkAndDaemon =
    "ethtool to report the link state, then the wireless daemon to answer";
constexpr std::string_view kRestart = "the interface to come up";
constexpr std::string_view kLinkMode = "ethtool to finish";
constexpr std::string_view kSnmp = "the SNMP daemon to restart";

// An address of the adapter is read after link detection. So is its MAC address.
bool IsReadAfterLinkDetection(const CatalogueRow& row) {
    return IsAddressCommand(row.id) || row.held_in.holder == Holder::kKernel;
}

// Settings that can only be read are the daemon's state, which is read after link detection. Its
// configuration is read at once.
LongestWait OfWireless(const CatalogueRow& row, uint32_t type) {
    if (row.held_in.holder == Holder::kDaemon) {
        return (row.directions & kSet) != 0
                   ? LongestWait{kDaemonSeconds, kDaemon}
                   : LongestWait{kLinkSeconds + kDaemonSeconds, kLinkAndDaemon};
    }
    if (type != VELK_GET || !IsReadAfterLinkDetection(row)) {
        return {};
    }
    // With method dhcp the gateway is read after a second link detection if the first finds none.
    const int detections = row.id == VELK_CMD_GATEWAY ? 2 : 1;
    return {detections * kLinkSeconds, kLink};
}

LongestWait OfSetting(const CatalogueRow& row, const Command& command) {
    if (row.held_in.holder == Holder::kTool) {
        return {0, kLinkMode};
    }
    if (command.type == VELK_SET && row.held_in.second_line.file == velk::kSnmpFile) {
        return {0, kSnmp};
    }
    return command.interface == VELK_WIRELESS_INTERFACE ? OfWireless(row, command.type)
                                                        : LongestWait{};
}

}  // namespace

LongestWait LongestWaitOf(const Command& command) {
    // A DHCP client takes as long as its configuration says.
    if (command.type == VELK_RESTART) {
        return {0, kRestart};
    }
    const CatalogueRow* row = velk::FindRow(Catalogue(), command.id, &CatalogueRow::id);
    return row == nullptr ? LongestWait{} : OfSetting(*row, command);
}

LongestWait LongestWaitOf(const Setting& setting) {
    return LongestWaitOf({VELK_GET, setting.row->id, setting.interface});
}

}  // namespace velkctl
