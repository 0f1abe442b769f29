// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The longest time that commands take, and their reason for waiting.
#include "velkctl/call/longest_wait.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::LongestWait;
using velkctl::LongestWaitOf;

// "165 s for the wireless daemon"
std::string Longest(velk_command_type type, uint32_t id, std::string_view interface) {
    const LongestWait longest = LongestWaitOf({type, id, interface});
    return std::to_string(longest.seconds) + " s for " + std::string(longest.awaited);
}

TEST(LongestWaitOf, AFileTakesNoTime) {
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_DNS, "eth0"), "0 s for ");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_DNS, "eth1"), "0 s for ");
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_ADMINISTRATOR, ""), "0 s for ");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_WEB_UPDATE, ""), "0 s for ");
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), "0 s for ");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth1"), "0 s for ");
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_IP_METHOD, "eth1"), "0 s for ");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_APIPA, "eth1"), "0 s for ");
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth0"), "0 s for ");
}

TEST(LongestWaitOf, AnAddressOfTheAdapterWaitsForTheLink) {
    for (const auto id : {VELK_CMD_MAC_ADDRESS, VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK}) {
        EXPECT_EQ(Longest(VELK_GET, id, "eth1"), "105 s for ethtool to report the link state");
    }
    // The gateway of a lease is read from the kernel's routes after a second link detection.
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_GATEWAY, "eth1"),
              "210 s for ethtool to report the link state");
}

TEST(LongestWaitOf, TheConfigurationOfTheAdapterWaitsForTheDaemon) {
    for (const auto type : {VELK_GET, VELK_SET}) {
        for (const auto id : {VELK_CMD_SERVICE_SET, VELK_CMD_SSID, VELK_CMD_CHANNEL,
                              VELK_CMD_ENCRYPTION, VELK_CMD_AUTHENTICATION, VELK_CMD_WEP_KEY_4,
                              VELK_CMD_WEP_DEFAULT_KEY, VELK_CMD_PSK, VELK_CMD_STANDARDS_ENABLED}) {
            EXPECT_EQ(Longest(type, id, "eth1"), "60 s for the wireless daemon to answer");
        }
    }
}

TEST(LongestWaitOf, TheStateOfTheAdapterWaitsForTheLinkAndForTheDaemon) {
    for (const auto id : {VELK_CMD_HARDWARE_VERSION, VELK_CMD_SOFTWARE_VERSION, VELK_CMD_STANDARD,
                          VELK_CMD_REGION, VELK_CMD_RATE, VELK_CMD_ACCESS_POINT, VELK_CMD_SIGNAL}) {
        EXPECT_EQ(Longest(VELK_GET, id, "eth1"),
                  "165 s for ethtool to report the link state, then the wireless daemon to "
                  "answer");
    }
}

TEST(LongestWaitOf, ARestartWaitsForTheInterface) {
    EXPECT_EQ(Longest(VELK_RESTART, VELK_CMD_RESTART, "eth0"), "0 s for the interface to come up");
    EXPECT_EQ(Longest(VELK_RESTART, VELK_CMD_RESTART, "eth1"), "0 s for the interface to come up");
}

TEST(LongestWaitOf, ToolsOfUnknownSpeedAreNamed) {
    EXPECT_EQ(Longest(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), "0 s for ethtool to finish");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_LINK_SPEED, "eth0"), "0 s for ethtool to finish");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_ADMINISTRATOR, ""), "0 s for the SNMP daemon to restart");
    EXPECT_EQ(Longest(VELK_SET, VELK_CMD_LOCATION, ""), "0 s for the SNMP daemon to restart");
}

TEST(LongestWaitOf, ASettingWaitsAsLongAsReadingIt) {
    const auto setting = velkctl::FindSetting("eth1.ssid");
    EXPECT_EQ(velkctl::LongestWaitOf(*setting).seconds, 60);
}

}  // namespace
