// longest_wait.cpp - the longest time that commands take, and their reason for waiting.
#include "velkctl/call/longest_wait.h"

namespace velkctl {
namespace {

// Link detection runs ethtool once a second for a minute, then reads two logs. Another program that
// keeps its turn costs 15 seconds in the first run of ethtool and for each log.
constexpr int kLinkSeconds = 60 + 3 * 15;
// The library waits for one answer of the wireless daemon for this time.
constexpr int kDaemonSeconds = 60;
// The sleeps of a wired restart with an adapter attached and the cable in, and of a wireless one.
constexpr int kWiredRestartSeconds = 66;
constexpr int kWirelessRestartSeconds = 1;

constexpr std::string_view kLink = "ethtool to report the link state";
constexpr std::string_view kDaemon = "the wireless daemon to answer";
constexpr std::string_view kLinkAndDaemon =
    "ethtool to report the link state, then for the wireless daemon to answer";
constexpr std::string_view kRestart = "the interface to come up";
constexpr std::string_view kLinkMode = "ethtool to finish";
constexpr std::string_view kSnmp = "the SNMP daemon to restart";

LongestWait OfWireless(uint32_t id) {
    switch (id) {
        case VELK_CMD_SOFTWARE_VERSION:
        case VELK_CMD_HARDWARE_VERSION:
        case VELK_CMD_STANDARD:
        case VELK_CMD_REGION:
        case VELK_CMD_RATE:
        case VELK_CMD_ACCESS_POINT:
        case VELK_CMD_SIGNAL:
            return {kLinkSeconds + kDaemonSeconds, kLinkAndDaemon};
        case VELK_CMD_MAC_ADDRESS:
        case VELK_CMD_IP_ADDRESS:
        case VELK_CMD_NETMASK:
        case VELK_CMD_GATEWAY:
            return {kLinkSeconds, kLink};
        default:
            return id >= VELK_CMD_STANDARD ? LongestWait{kDaemonSeconds, kDaemon} : LongestWait{};
    }
}

}  // namespace

LongestWait LongestWaitOf(const Command& command) {
    const bool is_wireless = command.interface == VELK_WIRELESS_INTERFACE;
    if (command.type == VELK_RESTART) {
        return {kLinkSeconds + (is_wireless ? kWirelessRestartSeconds : kWiredRestartSeconds),
                kRestart};
    }
    if (command.id == VELK_CMD_LINK_SPEED) {
        return {0, kLinkMode};
    }
    const bool is_identity =
        command.id == VELK_CMD_ADMINISTRATOR || command.id == VELK_CMD_LOCATION;
    if (command.type == VELK_SET && is_identity) {
        return {0, kSnmp};
    }
    if (!is_wireless || (command.type == VELK_SET && IsAddressCommand(command.id))) {
        return {};
    }
    return OfWireless(command.id);
}

LongestWait LongestWaitOf(const Setting& setting) {
    return LongestWaitOf({VELK_GET, setting.row->id, setting.interface});
}

}  // namespace velkctl
