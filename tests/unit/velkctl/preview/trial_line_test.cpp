// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The shell lines that may run in a private copy.
#include "velkctl/preview/trial_line.h"

#include <gtest/gtest.h>

namespace {

using velkctl::TrialLine;

TEST(TrialLine, RunsLinesOnFilesAndThoseThatShowSomething) {
    for (const char* line :
         {"cat /var/tmp/interfaces > /etc/network/interfaces", "rm /var/tmp/interfaces",
          "rm /var/libvelk/ntp.log", "ifconfig > /var/tmp/get_result",
          "grep \"eth0: link\" /var/log/syslog/syslog_info.log.0 > /var/tmp/get_result"}) {
        EXPECT_EQ(TrialLine(line), line);
    }
}

TEST(TrialLine, RunsThemWithoutSudo) {
    EXPECT_EQ(TrialLine("sudo ethtool eth0 > /var/tmp/get_result"),
              "ethtool eth0 > /var/tmp/get_result");
    EXPECT_EQ(TrialLine("sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result"),
              "/usr/sbin/ethtool eth0 > /var/tmp/get_result");
    EXPECT_EQ(TrialLine("sudo sed -i 's/syscontact.*/syscontact O'\\''Neil/' "
                        "/usr/local/share/etc/snmp/snmpd.conf"),
              "sed -i 's/syscontact.*/syscontact O'\\''Neil/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
}

TEST(TrialLine, DoesNotRunLinesThatActOnTheDevice) {
    for (const char* line :
         {"sudo ifdown eth0", "sudo ifup eth1 &", "sudo ifconfig eth0 10.0.0.1",
          "sudo ifconfig eth1 up", "sudo ethtool -s eth0 autoneg on",
          "sudo /usr/sbin/ethtool -s eth0 autoneg on", "sudo route add default gw 10.0.0.1",
          "sudo /etc/init.d/snmpd restart > /dev/null 2>&1", "rm -f /tmp/oldIPAddress", "reboot",
          ""}) {
        EXPECT_EQ(TrialLine(line), "") << line;
    }
}

TEST(TrialLine, DoesNotRunALineWithAnotherCommandInIt) {
    for (const char* line : {"rm x; reboot", "cat x > y & reboot", "rm $(reboot)", "rm `reboot`",
                             "grep x y | sh", "sudo ethtool x; reboot > y", "cat < x\nreboot"}) {
        EXPECT_EQ(TrialLine(line), "") << line;
    }
}

}  // namespace
