// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Whether a value that was set is found on the device, through the library on a private device.
#include "velkctl/doctor/read_back.h"

#include <optional>
#include <string>
#include <vector>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::kCrontab;
using testkit::kExitHooks;
using testkit::kInterfacesFile;
using testkit::kResolverFile;
using testkit::WriteFile;
using velkctl::CatalogueRow;
using velkctl::Data;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::Setting;

// Returns the text with the indented lines of a message joined to its first line.
std::string Unfolded(std::string text) {
    for (size_t at = text.find("\n  "); at != std::string::npos; at = text.find("\n  ", at)) {
        text.replace(at, 3, at > 0 && text[at - 1] == ',' ? " " : "; ");
    }
    return text;
}

class ReadBackTest : public testkit::DeviceTest {
  protected:
    // Verifies that the setting holds this value, as words; keeps the complaint.
    std::optional<bool> Verify(const std::string& name, const std::vector<std::string>& words) {
        const Setting setting = *FindSetting(name);
        const velkctl::Parsed wanted = setting.row->kind->Parse(words);
        EXPECT_EQ(wanted.problem, "");
        return Verify(setting, wanted.data);
    }
    std::optional<bool> Verify(const Setting& setting, const Data& wanted,
                               const velkctl::TimeLimits& limits = {}) {
        velkctl::Report report(velkctl::Report::Form::kText);
        testing::internal::CaptureStderr();
        const velkctl::ReadBack read_back =
            ReadSettingBack(setting, wanted, before.value_or(velkctl::FilesBefore(setting)),
                            velkctl::Device(limits, report), report);
        complaint = Unfolded(testing::internal::GetCapturedStderr());
        status = read_back.status;
        return read_back.held;
    }

    // Reads files and value as before a set.
    void Remember(const std::string& name) {
        velkctl::Report report(velkctl::Report::Form::kText);
        before.emplace(*FindSetting(name), velkctl::Device({}, report));
    }

    testkit::FakeShell shell;
    std::optional<velkctl::FilesBefore> before;  // those of now if nothing else is said
    std::string complaint;
    ExitStatus status = ExitStatus::kDone;
};

TEST_F(ReadBackTest, AHeldValueIsNotReported) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\taddress 10.0.0.5\n\tnetmask 255.0.0.0\n");
    EXPECT_EQ(Verify("eth0.method", {"static"}), true);
    EXPECT_EQ(Verify("eth0.address", {"10.0.0.5"}), true);
    EXPECT_EQ(Verify("eth0.netmask", {"255.0.0.0"}), true);
    EXPECT_EQ(Verify("eth0.gateway", {"none"}), true);
    EXPECT_EQ(complaint, "");
}

TEST_F(ReadBackTest, ASettingThatCannotBeReadIsNotChecked) {
    WriteFile(kExitHooks,
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "/sbin/printdhcpstart.pl\n/sbin/printdhcpnotice.pl\nfi\n");
    EXPECT_EQ(Verify("eth0.dhcp-notice", {"on"}), std::nullopt);
    EXPECT_EQ(status, ExitStatus::kDone);
    EXPECT_EQ(complaint,
              "velkctl: note: eth0.dhcp-notice: set, but not checked; it cannot be read\n");
}

TEST_F(ReadBackTest, TheLikelyCauseIsShownEvenIfTheValueCannotBeRead) {
    EXPECT_EQ(Verify("eth0.dhcp-notice", {"on"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_EQ(
        complaint,
        "velkctl: eth0.dhcp-notice: the library reported success, but the device cannot hold "
        "the value; likely cause: /etc/dhclient-exit-hooks: the file is missing; fix: put the "
        "device's own file there\n");
}

TEST_F(ReadBackTest, AMissingLineOfTheLastStanzaIsNamed) {
    WriteFile(kInterfacesFile, "iface eth1 inet static\n\taddress 10.0.0.5\n");
    EXPECT_EQ(Verify("eth1.gateway", {"10.0.0.1"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_EQ(complaint,
              "velkctl: eth1.gateway: the library reported success, but the device holds 'none'; "
              "likely cause: /etc/network/interfaces:1: the stanza is the last one and has no "
              "gateway line; fix: below line 1 add \"gateway 10.0.0.1\"\n");
}

TEST_F(ReadBackTest, AMissingStanzaIsNamed) {
    WriteFile(kInterfacesFile, "iface lo inet loopback\n");
    for (const auto& [name, value] :
         {std::pair("eth0.method", "dhcp"), std::pair("eth0.address", "10.0.0.5")}) {
        EXPECT_EQ(Verify(name, {value}), false);
        EXPECT_EQ(
            complaint,
            "velkctl: " + std::string(name) +
                ": the library reported success, but it cannot be read back: file, socket, "
                "time-out or unreadable value; likely cause: /etc/network/interfaces: there is no "
                "stanza; no line begins with 'iface eth0 inet static' or '... dhcp'; fix: add "
                "\"iface eth0 inet static\", and below it address, netmask and gateway\n");
    }
}

TEST_F(ReadBackTest, AnotherAddressIsShown) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\thwaddress ether 02:00:00:00:00:01\n");
    EXPECT_EQ(Verify("eth0.address", {"10.0.0.5"}), false);
    EXPECT_EQ(complaint,
              "velkctl: eth0.address: the library reported success, but the device holds 'ether "
              "02:00:00:00:00:01'; likely cause: /etc/network/interfaces:2: the library takes this "
              "line for the address line; 'hwaddress ether 02:00:00:00:00:01' contains 'address '; "
              "fix: above line 2 add \"address 10.0.0.5\"\n");
}

TEST_F(ReadBackTest, AHookThatIsNotThereIsNamed) {
    WriteFile(kExitHooks, "exit 0\n");
    EXPECT_EQ(Verify("eth1.apipa", {"on"}), false);
    EXPECT_EQ(complaint,
              "velkctl: eth1.apipa: the library reported success, but the device holds 'off'; "
              "likely cause: /etc/dhclient-exit-hooks: no line that runs for eth1 has "
              "/usr/sbin/avahi-autoipd; fix: add the line that runs /usr/sbin/avahi-autoipd, with "
              "a '#' before it for off\n");
}

TEST_F(ReadBackTest, AFileWithNothingWrongIsNotNamed) {
    WriteFile(kExitHooks, "/usr/sbin/avahi-autoipd eth0\n");
    EXPECT_EQ(Verify("eth0.apipa", {"off"}), false);
    EXPECT_EQ(complaint,
              "velkctl: eth0.apipa: the library reported success, but the device holds 'on'\n");
}

TEST_F(ReadBackTest, AFileThatWasEmptiedIsNamed) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\tgateway 10.0.0.1\n");
    before.emplace(*FindSetting("eth0.gateway"));
    WriteFile(kInterfacesFile, "");
    EXPECT_EQ(Verify("eth0.gateway", {"10.0.0.2"}), false);
    EXPECT_EQ(complaint,
              "velkctl: eth0.gateway: the library reported success, but it cannot be read back: "
              "file, socket, time-out or unreadable value; /etc/network/interfaces is empty since "
              "this set, and no edit copy has the rest: restore it before the device restarts; "
              "likely cause: /etc/network/interfaces: there is no stanza; no line begins with "
              "'iface eth0 inet static' or '... dhcp'; fix: add \"iface eth0 inet static\", and "
              "below it address, netmask and gateway\n");
}

TEST_F(ReadBackTest, AFileThatWasEmptiedIsNamedAlsoWhereTheValueCannotBeRead) {
    WriteFile(kExitHooks,
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "/sbin/printdhcpstart.pl\n/sbin/printdhcpnotice.pl\nfi");
    before.emplace(*FindSetting("eth0.dhcp-notice"));
    WriteFile(kExitHooks, "");
    EXPECT_EQ(Verify("eth0.dhcp-notice", {"on"}), false);
    EXPECT_NE(complaint.find("the device cannot hold the value; /etc/dhclient-exit-hooks is empty "
                             "since this set, and no edit copy has the rest"),
              std::string::npos)
        << complaint;
}

TEST_F(ReadBackTest, ALeaseIsNoProofAgainstAnAddress) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n\taddress 10.0.0.5\n");
    EXPECT_EQ(Verify("eth0.address", {"10.0.0.5"}), std::nullopt);
    EXPECT_EQ(complaint,
              "velkctl: note: eth0.address: set, but not checked; "
              "while eth0.method is dhcp, its lease is shown\n");
}

TEST_F(ReadBackTest, AMethodThatCannotBeReadIsNoLease) {
    WriteFile(kInterfacesFile, "iface eth0 inet bootp\n\taddress 10.0.0.2\n");
    (void)Verify("eth0.address", {"10.0.0.5"});
    EXPECT_NE(complaint, "");
    EXPECT_EQ(complaint.find("lease"), std::string::npos) << complaint;
}

TEST_F(ReadBackTest, TheLikelyCauseIsShownEvenForADhcpInterface) {
    WriteFile(kInterfacesFile, "iface eth1 inet dhcp\n");
    EXPECT_EQ(Verify("eth1.gateway", {"10.0.0.1"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_EQ(complaint,
              "velkctl: eth1.gateway: the library reported success, but the device cannot hold the "
              "value; likely cause: "
              "/etc/network/interfaces:1: the stanza is the last one and has no gateway line; fix: "
              "below line 1 add \"gateway 10.0.0.1\"\n");
}

TEST_F(ReadBackTest, AReadingThatTakesTooLongProvesNothing) {
    libc().OnCall(testkit::Call::kSystem, [](const testkit::Event&) { (void)pause(); });
    const Setting setting = *FindSetting("eth0.link-speed");
    const Data wanted = setting.row->kind->Parse(std::vector<std::string>{"auto"}).data;
    EXPECT_EQ(Verify(setting, wanted, {.timeout_seconds = 1}), std::nullopt);
    EXPECT_EQ(status, ExitStatus::kTimedOut);
    EXPECT_EQ(complaint,
              "velkctl: eth0.link-speed: set, but not read back; no answer after 1 s; waited "
              "for ethtool to finish; fix: run it again with a longer --timeout\n");
}

TEST_F(ReadBackTest, ASpeedThatTheDriverDidNotTakeHasNoCauseToName) {
    shell.Prints("sudo ethtool", {"Speed: 10Mb/s\nDuplex: Half\nAuto-negotiation: off\n"});
    EXPECT_EQ(Verify("eth0.link-speed", {"100-full"}), false);
    EXPECT_EQ(complaint,
              "velkctl: eth0.link-speed: the library reported success, but the device holds "
              "'10-half'\n");
}

TEST_F(ReadBackTest, AValueOfAnotherProgramIsNoFailure) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    Remember("eth0.dns");
    WriteFile(kResolverFile, "nameserver 10.0.0.3\n");
    EXPECT_EQ(Verify("eth0.dns", {"10.0.0.2"}), false);
    EXPECT_EQ(status, ExitStatus::kDone);
    EXPECT_EQ(complaint,
              "velkctl: note: eth0.dns: set, but another program has set it to '10.0.0.3' since\n");
}

TEST_F(ReadBackTest, TheValueFromBeforeIsNotThatOfAnotherProgram) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    Remember("eth0.dns");
    EXPECT_EQ(Verify("eth0.dns", {"10.0.0.2"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_EQ(
        complaint,
        "velkctl: eth0.dns: the library reported success, but the device holds '10.0.0.1'; it "
        "was not set, or another program has set it since\n");
}

TEST_F(ReadBackTest, AThirdValueThatAFindingExplainsIsNotThatOfAnotherProgram) {
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u 192.168.0.1\n15 3 * * * /bin/true\n");
    Remember("ntp-server");
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u 192.168.0.515 3 * * * /bin/true\n");
    EXPECT_EQ(Verify("ntp-server", {"192.168.0.5"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_NE(complaint.find("the device holds '192.168.0.515'; likely cause: "
                             "/var/cron/tabs/root:1: two entries are on one line"),
              std::string::npos)
        << complaint;
}

TEST_F(ReadBackTest, AFileThatIsCutForAMomentIsReadAgain) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    Remember("eth0.dns");
    WriteFile(kResolverFile, "");
    libc().OnCall(Call::kNanosleep,
                  [](const Event&) { WriteFile(kResolverFile, "nameserver 10.0.0.2\n"); });
    EXPECT_EQ(Verify("eth0.dns", {"10.0.0.2"}), true);
    EXPECT_EQ(status, ExitStatus::kDone);
    EXPECT_EQ(complaint, "");
}

TEST_F(ReadBackTest, AnotherChannelMayBeThatOfAnotherProgram) {
    testkit::FakeDaemon daemon;
    SMsgConf conf{};
    conf.channel = 7;
    daemon.SetConf(conf);
    EXPECT_EQ(Verify("eth1.channel", {"3"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
    EXPECT_NE(complaint.find("the device holds '7'; it was not set, or another program has set it "
                             "since; likely cause: "),
              std::string::npos)
        << complaint;
}

TEST_F(ReadBackTest, WithoutAValueFromBeforeNoProgramIsAccused) {
    Remember("eth0.dns");
    EXPECT_FALSE(before->value());
    WriteFile(kResolverFile, "nameserver 10.0.0.3\n");
    EXPECT_EQ(Verify("eth0.dns", {"10.0.0.2"}), false);
    EXPECT_EQ(status, ExitStatus::kNotHeld);
}

TEST_F(ReadBackTest, TheValueOfAToolIsNotReadBefore) {
    Remember("eth0.link-speed");
    EXPECT_FALSE(before->value());
    Remember("eth0.dhcp-notice");
    EXPECT_FALSE(before->value());
}

TEST_F(ReadBackTest, ASecretIsNotShown) {
    // A setting of the test's own. It holds a secret, and another one than was set.
    CatalogueRow row = *FindSetting("eth0.address")->row;
    row.secret = true;
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\taddress hunter2\n");
    EXPECT_EQ(Verify({&row, "eth0"}, row.kind->Parse(std::vector<std::string>{"10.0.0.5"}).data),
              false);
    EXPECT_NE(complaint.find("the device holds another value"), std::string::npos) << complaint;
    EXPECT_EQ(complaint.find("hunter2"), std::string::npos) << complaint;
    EXPECT_EQ(complaint.find("10.0.0.5"), std::string::npos) << complaint;
}

}  // namespace
