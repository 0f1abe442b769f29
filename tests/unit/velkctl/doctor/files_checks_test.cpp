// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the files and folders of the library.
#include <string>

#include <sys/stat.h>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using testkit::WriteFile;
using velkctl::FormatFindings;

bool Holds(const std::string& whole, const std::string& part) {
    return whole.find(part) != std::string::npos;
}

class FilesCheck : public testkit::DeviceTest {};

TEST_F(FilesCheck, NamesTheSettingsThatAMissingFileAffects) {
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: method, address, netmask and gateway can be neither read nor set\n"
                      "  /etc/network/interfaces: the file is missing\n"
                      "  fix: put the device's own file there\n"))
        << words;
    EXPECT_TRUE(Holds(words,
                      "problem: administrator and location can be neither read nor set\n"
                      "  /var/libvelk/libvelk: the file is missing\n"));
    EXPECT_TRUE(Holds(words,
                      "problem: administrator and location do not reach the SNMP agent\n"
                      "  /usr/local/share/etc/snmp/snmpd.conf: the file is missing\n"));
    EXPECT_TRUE(Holds(words,
                      "warning: dns cannot be read until it is set\n"
                      "  /etc/resolv.dnsmasq.conf: the file is missing\n"));
}

TEST_F(FilesCheck, FindsAFifoInTheFilesPlace) {
    ASSERT_EQ(mkfifo("/etc/dhclient.conf", 0600), 0);
    EXPECT_TRUE(Holds(FormatFindings(velkctl::CheckFiles()),
                      "problem: method, dhcp-dns and dhcp-ntp can be neither read nor set\n"
                      "  /etc/dhclient.conf: a folder, a FIFO or a device is in its place\n"));
    EXPECT_EQ(FormatFindings(velkctl::CheckDhcpConfig()), "");
}

TEST_F(FilesCheck, FindsFilesThatAreNotTextOrTooLarge) {
    WriteFile("/etc/network/interfaces", std::string(2000000, '\0'));
    WriteFile("/var/cron/tabs/root", std::string("a\0b\n", 4));
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: method, address, netmask and gateway cannot be examined\n"
                      "  /etc/network/interfaces: the file is larger than 1 MiB\n"))
        << words;
    EXPECT_TRUE(Holds(words,
                      "problem: ntp, ntp-server and web-update may be read and set wrongly\n"
                      "  /var/cron/tabs/root: the file has NUL bytes, so it is not text\n"))
        << words;
}

TEST_F(FilesCheck, FindsLinesThatEndWithCarriageReturnsWhereTheyMatter) {
    WriteFile("/sbin/dhclient-script", "if [ x$interface = xeth0 ]; then\r\nfi\r\n\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 10.0.0.1\r\n");
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: dhcp-dns may be read and set wrongly\n"
                      "  /sbin/dhclient-script: 2 of its 3 lines end with CR LF\n"
                      "  fix: sed -i 's/[[:cntrl:]]$//' /sbin/dhclient-script\n"))
        << words;
    EXPECT_FALSE(Holds(words, "/etc/resolv.dnsmasq.conf")) << words;
    EXPECT_EQ(FormatFindings(velkctl::CheckClientScript()), "")
        << "its words are not what they seem";
}

TEST_F(FilesCheck, SaysNothingAboutFoldersThatAreThere) {
    EXPECT_EQ(FormatFindings(velkctl::CheckFolders()), "");
}

}  // namespace
