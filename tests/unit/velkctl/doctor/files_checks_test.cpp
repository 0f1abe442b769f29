// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the files and folders of the library.
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testkit::WriteFile;
using velkctl::FormatFindings;

class FilesCheck : public testkit::DeviceTest {};

TEST_F(FilesCheck, NamesTheSettingsThatAMissingFileAffects) {
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_THAT(
        words,
        HasSubstr("problem: method, address, netmask and gateway can be neither read nor set\n"
                  "  /etc/network/interfaces: the file is missing\n"
                  "  fix: put the device's own file there\n"));
    EXPECT_THAT(words, HasSubstr("problem: administrator and location can be neither read nor set\n"
                                 "  /var/libvelk/libvelk: the file is missing\n"));
    EXPECT_THAT(words, HasSubstr("problem: administrator and location do not reach the SNMP agent\n"
                                 "  /usr/local/share/etc/snmp/snmpd.conf: the file is missing\n"));
    EXPECT_THAT(words, HasSubstr("warning: dns cannot be read until it is set\n"
                                 "  /etc/resolv.dnsmasq.conf: the file is missing\n"));
}

TEST_F(FilesCheck, FindsAFifoInTheFilesPlace) {
    ASSERT_EQ(mkfifo("/etc/dhclient.conf", 0600), 0);
    EXPECT_THAT(FormatFindings(velkctl::CheckFiles()),
                HasSubstr("problem: method, dhcp-dns and dhcp-ntp can be neither read nor set\n"
                          "  /etc/dhclient.conf: a folder, a FIFO or a device is in its place\n"));
    EXPECT_EQ(FormatFindings(velkctl::CheckDhcpConfig()), "");
}

TEST_F(FilesCheck, FindsFilesThatAreNotTextOrTooLarge) {
    WriteFile("/etc/network/interfaces", std::string(2000000, '\0'));
    WriteFile("/var/cron/tabs/root", std::string("a\0b\n", 4));
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_THAT(words,
                HasSubstr("problem: method, address, netmask and gateway cannot be examined\n"
                          "  /etc/network/interfaces: the file is larger than 1 MiB\n"));
    EXPECT_THAT(words,
                HasSubstr("problem: ntp, ntp-server and web-update may be read and set wrongly\n"
                          "  /var/cron/tabs/root: the file has NUL bytes, so it is not text\n"));
}

TEST_F(FilesCheck, FindsLinesThatEndWithCarriageReturnsWhereTheyMatter) {
    WriteFile("/sbin/dhclient-script", "if [ x$interface = xeth0 ]; then\r\nfi\r\n\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 10.0.0.1\r\n");
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_THAT(words, HasSubstr("problem: dhcp-dns may be read and set wrongly\n"
                                 "  /sbin/dhclient-script: 2 of its 3 lines end with CR LF\n"
                                 "  fix: sed -i 's/[[:cntrl:]]$//' /sbin/dhclient-script\n"));
    EXPECT_THAT(words, Not(HasSubstr("/etc/resolv.dnsmasq.conf")));
    EXPECT_EQ(FormatFindings(velkctl::CheckClientScript()), "")
        << "its words are not what they seem";
}

TEST_F(FilesCheck, SaysNothingAboutFoldersThatAreThere) {
    EXPECT_EQ(FormatFindings(velkctl::CheckFolders()), "");
}

}  // namespace
