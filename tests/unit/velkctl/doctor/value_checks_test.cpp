// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about values that no set would write, and the notes about them.
#include "velkctl/doctor/value_checks.h"

#include <string>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/call/device.h"

namespace {

using testkit::kCrontab;
using testkit::kInterfacesFile;
using testkit::kResolverFile;
using testkit::WriteFile;
using velkctl::Data;
using velkctl::Finding;
using velkctl::Findings;
using velkctl::FindSetting;
using velkctl::FormatFindings;
using velkctl::Impact;
using velkctl::Setting;

class ValueChecksTest : public testkit::DeviceTest {
  protected:
    // Returns the findings about the whole device as text.
    static std::string Found(const Findings& known = {}) {
        velkctl::Report report(velkctl::Report::Form::kText);
        return FormatFindings(velkctl::CheckValues(known, report));
    }
    // Returns the note about the setting's present value; empty if none.
    static std::string NoteAbout(const std::string& name) {
        velkctl::Report report(velkctl::Report::Form::kText);
        const Setting setting = *FindSetting(name);
        const velkctl::Answer answer = velkctl::Device({}, report).Get(setting);
        EXPECT_TRUE(answer.ok()) << name;
        const auto invalid = InvalidValue(setting, answer.data);
        return invalid ? MessageLines(NoteOf(*invalid)) : "";
    }
    static std::string NoteAbout(const std::string& name, const Data& value) {
        const auto invalid = InvalidValue(*FindSetting(name), value);
        return invalid ? MessageLines(NoteOf(*invalid)) : "";
    }
};

TEST_F(ValueChecksTest, ValidValuesAreNoFindings) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\n\taddress 10.0.0.5\n\tnetmask 255.0.0.0\n"
              "iface eth1 inet dhcp\n");
    WriteFile(kResolverFile, "nameserver 10.0.0.1\nnameserver 10.0.0.2\n");
    WriteFile(kCrontab, "0 * * * * ntpdate -u time.example.net > /dev/null\n");
    EXPECT_EQ(Found(), "");
    EXPECT_EQ(NoteAbout("eth0.address"), "");
    EXPECT_EQ(NoteAbout("eth0.gateway"), "") << "none";
    EXPECT_EQ(NoteAbout("eth0.dns"), "");
    EXPECT_EQ(NoteAbout("ntp-server"), "");
}

TEST_F(ValueChecksTest, MissingFilesAreNoFindings) {
    EXPECT_EQ(Found(), "");
}

TEST_F(ValueChecksTest, AnAddressAndAMaskAreChecked) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\n\taddress 999.1.1.1\n\tnetmask 24\n\tgateway 10.0.0\n");
    EXPECT_EQ(Found(),
              "problem: eth0.address has a value that is not valid\n"
              "  /etc/network/interfaces:2: '999.1.1.1' is not an IPv4 address\n"
              "  fix: velkctl set eth0.address VALUE\n"
              "problem: eth0.netmask has a value that is not valid\n"
              "  /etc/network/interfaces:3: '24' is short for 255.255.255.0\n"
              "  fix: velkctl set eth0.netmask 255.255.255.0\n"
              "problem: eth0.gateway has a value that is not valid\n"
              "  /etc/network/interfaces:4: '10.0.0' is not an IPv4 address\n"
              "  fix: velkctl set eth0.gateway VALUE\n");
    EXPECT_EQ(NoteAbout("eth0.netmask"),
              "eth0.netmask: '24' is short for 255.255.255.0\n"
              "  it is read from /etc/network/interfaces:3\n"
              "  fix: velkctl set eth0.netmask 255.255.255.0");
}

TEST_F(ValueChecksTest, TheLinesOfAnInterfaceWithDhcpAreNotChecked) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n\taddress 999.1.1.1\n");
    EXPECT_EQ(Found(), "");
}

TEST_F(ValueChecksTest, ALeaseHasNoLine) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n\taddress 10.0.0.5\n");
    Data value{};
    (void)std::string("127.0.0.1").copy(value.data(), value.size());
    EXPECT_EQ(NoteAbout("eth0.address", value),
              "eth0.address: '127.0.0.1' is a loopback address\n"
              "  fix: velkctl set eth0.address VALUE");
}

TEST_F(ValueChecksTest, EachServerIsCheckedOnce) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\nnameserver foo\n");
    EXPECT_EQ(Found(),
              "problem: eth0.dns has a value that is not valid\n"
              "  /etc/resolv.dnsmasq.conf:2: 'foo' is not an IPv4 address\n"
              "  fix: velkctl set eth0.dns VALUE\n");
    EXPECT_EQ(NoteAbout("eth1.dns"),
              "eth1.dns: 'foo' is not an IPv4 address\n"
              "  it is read from /etc/resolv.dnsmasq.conf:2\n"
              "  fix: velkctl set eth1.dns VALUE");
}

TEST_F(ValueChecksTest, AServerThatASetTakesWithForceIsNoNote) {
    WriteFile(kResolverFile, "nameserver 127.0.0.1\n");
    EXPECT_EQ(NoteAbout("eth0.dns"), "");
    EXPECT_EQ(Found(),
              "warning: eth0.dns names the device itself\n"
              "  /etc/resolv.dnsmasq.conf:1: 127.0.0.1 is a loopback address\n"
              "  fix: velkctl set eth0.dns VALUE\n");
}

TEST_F(ValueChecksTest, TheCrontabIsChecked) {
    WriteFile(kCrontab,
              "0 25 * * * perl /usr/bin/web_contents_updater.pl\n"
              "0 * * * * ntpdate -u bad;host > /dev/null\n");
    EXPECT_EQ(Found(),
              "problem: ntp-server has a value that is not valid\n"
              "  /var/cron/tabs/root:2: 'bad;host' is not a host name\n"
              "  fix: velkctl set ntp-server VALUE\n"
              "warning: web-update has a value that is not valid\n"
              "  /var/cron/tabs/root:1: 'daily 25:0' is not a schedule\n"
              "  fix: velkctl set web-update SCHEDULE\n");
}

TEST_F(ValueChecksTest, AnHourOfOneDigitIsNoFinding) {
    WriteFile(kCrontab, "30 8 * * * perl /usr/bin/web_contents_updater.pl\n");
    EXPECT_EQ(Found(), "");
    WriteFile(kCrontab, "5 8 * * 1 perl /usr/bin/web_contents_updater.pl\n");
    EXPECT_EQ(Found(), "");
}

TEST_F(ValueChecksTest, ASettingThatIsReadWronglyIsLeftOut) {
    WriteFile(kCrontab, "@daily perl /usr/bin/web_contents_updater.pl\n");
    const Setting setting = *FindSetting("web-update");
    EXPECT_NE(Found({About({setting}, kCrontab, Impact::kNothing)}), "");
    EXPECT_EQ(Found({About({setting}, kCrontab, Impact::kReading)}), "");
}

TEST_F(ValueChecksTest, ASettingThatIsSetInTheWrongPlaceIsLeftOut) {
    WriteFile(kCrontab, "0 * * * * ntpdate -u bad;host\n");
    const Setting setting = *FindSetting("ntp-server");
    const Finding about = About({setting}, kCrontab, Impact::kSetting);
    EXPECT_NE(Found({about}), "") << "the file cannot be written";
    EXPECT_EQ(Found({about.At(0)}), "");
}

TEST_F(ValueChecksTest, AValueOfTheDaemonHasNoFile) {
    Data value{};
    value[0] = 9;
    EXPECT_EQ(NoteAbout("eth1.encryption", value),
              "eth1.encryption: '9' is not valid\n"
              "  fix: velkctl set eth1.encryption VALUE");
}

TEST_F(ValueChecksTest, SecretsAndFactsAreNotChecked) {
    Data value{};
    value.fill('x');
    EXPECT_EQ(NoteAbout("eth1.wep-key-1", value), "");
    EXPECT_EQ(NoteAbout("eth1.rate", value), "");
}

}  // namespace
