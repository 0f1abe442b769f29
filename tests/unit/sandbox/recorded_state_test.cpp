// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The lines about the state of a captured device.
#include "sandbox/device/recorded_state.h"

#include <string>

#include <gtest/gtest.h>

#include "sandbox/process/failure.h"

namespace {

using sandbox::Link;
using sandbox::ParseState;
using sandbox::RecordedState;

TEST(RecordedState, TakesEachLine) {
    const RecordedState state = ParseState(
        "interface eth0 no-link\nhardware-address eth0 02:00:00:00:00:1a\n"
        "gateway eth0 10.0.0.1\ninterface eth1 missing\n"
        "address eth0:avahi 169.254.1.2 255.255.0.0\nlink-mode eth0 off 10 half\n"
        "socket /tmp/WlanAplToWlanSock 0666\ndhcp-client eth0 /var/lib/dhcp/x.leases\n"
        "tool ifup missing\ntool route /sbin/route\ntool /etc/init.d/snmpd missing\n"
        "no-folder /var/cron/tabs\ndaemon answers\n"
        "a-later-line with any words\n");
    EXPECT_EQ(state.Find("eth0")->link, Link::kNoLink);
    EXPECT_EQ(state.Find("eth0")->hardware_address->back(), 0x1a);
    EXPECT_TRUE(state.Find("eth0")->gateway.has_value());
    EXPECT_EQ(state.Find("eth1")->link, Link::kMissing);
    EXPECT_EQ(state.addresses.at(0).label, "eth0:avahi");
    EXPECT_EQ(state.link_mode->speed, 10U);
    EXPECT_FALSE(state.link_mode->negotiates);
    EXPECT_FALSE(state.link_mode->is_full_duplex);
    EXPECT_EQ(state.sockets.at(0).mode, 0666U);
    EXPECT_EQ(state.clients.at(0).lease_file, "/var/lib/dhcp/x.leases");
    EXPECT_EQ(state.tools.at(0).path, "");
    EXPECT_EQ(state.tools.at(1).path, "/sbin/route");
    EXPECT_EQ(state.missing_folders.at(0), "/var/cron/tabs");
    EXPECT_EQ(state.daemon, sandbox::RecordedDaemon::kAnswers);
}

TEST(RecordedState, RefusesOtherWords) {
    for (const char* line : {"interface eth2 link",
                             "interface eth0 up",
                             "interface eth0",
                             "hardware-address eth0 x",
                             "hardware-address eth0 01:00:00:00:00:01",
                             "hardware-address eth0 00:00:00:00:00:00",
                             "hardware-address eth2 02:00:00:00:00:01",
                             "gateway eth0 here",
                             "gateway lo 10.0.0.1",
                             "address lo 127.0.0.1 255.0.0.0",
                             "address eth0:; 1.1.1.1 255.0.0.0",
                             "address eth0:0123456789ab 1.1.1.1 255.0.0.0",
                             "address eth0 1.1.1 255.0.0.0",
                             "link-mode eth1 on 100 full",
                             "link-mode eth0 on many full",
                             "socket /etc/x 0666",
                             "dhcp-client eth0 x",
                             "dhcp-client lo /x",
                             "tool sh;x missing",
                             "tool sh /etc/sh",
                             "tool ifup /sbin/sh",
                             "no-folder x",
                             "daemon asleep"}) {
        std::string message;
        try {
            (void)ParseState(std::string("daemon missing\n") + line + "\n");
        } catch (const sandbox::Failure& failure) {
            message = failure.what();
        }
        EXPECT_EQ(message, "line 2 of recordings/device.txt is not valid") << line;
    }
}

}  // namespace
