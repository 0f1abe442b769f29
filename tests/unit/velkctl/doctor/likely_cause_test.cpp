// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The likely causes of a setting that does not hold the value that was set, on a private device.
#include "velkctl/doctor/likely_cause.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <sys/mount.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "velkctl/doctor/checks.h"

namespace {

using testkit::kCrontab;
using testkit::kExitHooks;
using testkit::kInterfacesFile;
using testkit::WriteFile;
using velkctl::Findings;
using velkctl::Impact;
using velkctl::LikelyCauses;
using velkctl::Setting;
using velkctl::Severity;

constexpr auto& kDhcpConfig = testkit::kDhcpConfigFile;
constexpr auto& kIdentity = testkit::kIdentityFile;

constexpr char kEth1Address[] = "iface eth1 inet static\n\taddress 10.0.0.2\n";

Setting Find(const std::string& name) {
    return velkctl::FindSetting(name).value();
}

// "/etc/network/interfaces:12: the stanza is ...; fix: add ..."
std::string CauseText(const velkctl::Finding& cause) {
    velkctl::Problem problem;
    AddLikelyCause(problem, cause);
    return problem.detail.substr(std::string("likely cause: ").size()) + "; fix: " + problem.remedy;
}

class LikelyCausesTest : public testkit::DeviceTest {
  protected:
    LikelyCausesTest() : path_(getenv("PATH")) {}
    ~LikelyCausesTest() override { setenv("PATH", path_.c_str(), 1); }

    // Sets it with the library, which is to report success.
    void Set(const std::string& name, std::string_view bytes) {
        const Setting setting = Find(name);
        ASSERT_EQ(Execute(VELK_SET, setting.row->id, setting.interface, bytes), LIB_VELK_SUCCESS)
            << name;
    }
    // The likeliest cause, in words.
    static std::string FirstOf(const std::string& name) {
        const Findings causes = LikelyCauses(Find(name));
        return causes.empty() ? "" : CauseText(causes.front());
    }

  private:
    const std::string path_;
};

TEST_F(LikelyCausesTest, AnInterfaceWithoutAStanzaHoldsNoValues) {
    WriteFile(kInterfacesFile, "iface lo inet loopback\n");
    WriteFile(kDhcpConfig, "");
    Set("eth0.method", "\x01");
    Set("eth0.address", "10.0.0.5");
    for (const char* name : {"eth0.method", "eth0.address", "eth0.netmask", "eth0.gateway"}) {
        EXPECT_EQ(FirstOf(name),
                  "/etc/network/interfaces: there is no stanza; no line begins with 'iface eth0 "
                  "inet static' or '... dhcp'; fix: add \"iface eth0 inet static\", and below it "
                  "address, netmask and gateway")
            << name;
    }
}

TEST_F(LikelyCausesTest, TheLastStanzaGainsNoLine) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n" + std::string(kEth1Address));
    Set("eth1.gateway", "10.0.0.1");
    EXPECT_EQ(FirstOf("eth1.gateway"),
              "/etc/network/interfaces:2: the stanza is the last one and has no gateway line; fix: "
              "below line 2 add \"gateway GATEWAY\"");
    EXPECT_EQ(FirstOf("eth1.netmask"),
              "/etc/network/interfaces:2: the stanza is the last one and has no netmask line; fix: "
              "below line 2 add \"netmask NETMASK\"");
    EXPECT_EQ(FirstOf("eth0.gateway"), "");
    EXPECT_EQ(FirstOf("eth1.method"), "");
}

TEST_F(LikelyCausesTest, ASecondGatewayOutlivesTheFirst) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\n\tgateway 10.0.0.1\n\tgateway 10.0.0.2\n"
              "\tgateway 10.0.0.3\n" +
                  std::string(kEth1Address));
    Set("eth0.gateway", "");
    EXPECT_EQ(FirstOf("eth0.gateway"),
              "/etc/network/interfaces:3: a set removes line 2 alone; 'gateway 10.0.0.3' still "
              "applies; fix: remove 'gateway 10.0.0.3'");
    Set("eth0.gateway", "");
    EXPECT_EQ(FirstOf("eth0.gateway"),
              "/etc/network/interfaces:2: it is read from 'gateway 10.0.0.3'; fix: remove that "
              "line, or set it again");
}

TEST_F(LikelyCausesTest, AHookThatIsNotThereCannotBeSwitched) {
    WriteFile(kExitHooks, "exit 0\n");
    Set("eth1.apipa", "\x01");
    EXPECT_EQ(FirstOf("eth1.apipa"),
              "/etc/dhclient-exit-hooks: no line that runs for eth1 has /usr/sbin/avahi-autoipd; "
              "fix: add the line that runs /usr/sbin/avahi-autoipd, with a '#' before it for off");
}

TEST_F(LikelyCausesTest, AnOptionNeedsARequestStatement) {
    WriteFile(kDhcpConfig, "timeout 10;\n");
    WriteFile(kExitHooks, "/usr/bin/ntpdate -u 10.0.0.1\n");
    WriteFile("/sbin/dhclient-script", "make_resolv_conf\n");
    Set("dhcp-ntp", "\x01");
    EXPECT_EQ(FirstOf("dhcp-ntp"),
              "/etc/dhclient.conf: there is no request statement; fix: add one: request "
              "subnet-mask, broadcast-address, routers;");
    Set("eth1.dhcp-dns", "\x01");
    EXPECT_EQ(FirstOf("eth1.dhcp-dns"),
              "/etc/dhclient.conf: no request statement applies to eth1; fix: add one: request "
              "subnet-mask, broadcast-address, routers;");
}

TEST_F(LikelyCausesTest, ABlockThatIsSwitchedOffRequestsNothing) {
    WriteFile(kDhcpConfig, "#interface \"eth0\" {\n#\trequest routers;\n#}\n");
    WriteFile("/sbin/dhclient-script", "make_resolv_conf\n");
    Set("eth0.dhcp-dns", "\x01");
    EXPECT_EQ(FirstOf("eth0.dhcp-dns"),
              "/etc/dhclient.conf:1: the block of the interface is switched off; no other request "
              "statement applies; fix: if DHCP is wanted: velkctl set eth0.method dhcp");
}

TEST_F(LikelyCausesTest, TheTimeSettingsNeedACrontabEntry) {
    WriteFile(kCrontab, "0 * * * * true\n");
    Set("ntp", "\x01");
    Set("ntp-server", "10.0.0.9");
    for (const char* name : {"ntp", "ntp-server"}) {
        EXPECT_EQ(FirstOf(name),
                  "/var/cron/tabs/root: no entry runs ntpdate; fix: write: 0 * * * * "
                  "/usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log")
            << name;
    }
    WriteFile(kCrontab, "##0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n");
    Set("ntp", "\x01");
    EXPECT_EQ(FirstOf("ntp"), "") << "the next set of it would do";
    WriteFile(kCrontab, "###0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n");
    Set("ntp", "\x01");
    EXPECT_EQ(FirstOf("ntp"),
              "/var/cron/tabs/root:1: there are two '#' before the entry; switching on removes "
              "only one; fix: leave one '#', in the first column");
}

TEST_F(LikelyCausesTest, ATimeServerNeedsAPlace) {
    WriteFile(kCrontab, "0 * * * * ntpdate -u > /var/libvelk/ntp.log\n");
    Set("ntp-server", "10.0.0.9");
    EXPECT_EQ(FirstOf("ntp-server"),
              "/var/cron/tabs/root:1: a new server would be joined to another word on the line; "
              "fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log");
}

TEST_F(LikelyCausesTest, ATimeServerAtTheEndOfItsLineJoinsTwoEntries) {
    WriteFile(kCrontab, "0 * * * * ntpdate 10.0.0.1\n5 4 * * * true\n");
    Set("ntp-server", "10.0.0.9");
    EXPECT_EQ(FirstOf("ntp-server"),
              "/var/cron/tabs/root:1: two entries are on one line; a set of a server at the end of "
              "the line joins them; fix: put the second one on a line of its own; write: 0 * * * * "
              "/usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log");
}

TEST_F(LikelyCausesTest, AFileThatCannotBeWrittenIsFound) {
    constexpr std::string_view kEntry = "#0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n";
    WriteFile(kCrontab, kEntry);
    const testkit::Mounted in_place(kCrontab, kCrontab, "none", MS_BIND, nullptr);
    ASSERT_EQ(mount("none", kCrontab, "none", MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    Set("ntp", "\x01");
    EXPECT_EQ(testkit::ReadFile(kCrontab), kEntry);
    EXPECT_EQ(FirstOf("ntp"),
              "/var/cron/tabs/root: this user may not write the file: Read-only file system; fix: "
              "mount it writable");
}

TEST_F(LikelyCausesTest, AFullFolderForEditCopiesIsFound) {
    WriteFile(kIdentity, "");
    const testkit::Emptied small("/var/tmp", "size=32k");
    EXPECT_EQ(FirstOf("location"),
              "/var/tmp: the file system is full: 32768 bytes are free; fix: remove files that are "
              "not needed there");
}

TEST_F(LikelyCausesTest, AFailedGetIsNotBlamedOnAFileThatCannotBeWritten) {
    WriteFile(kInterfacesFile, "iface lo inet loopback\n");
    const testkit::Mounted in_place(kInterfacesFile, kInterfacesFile, "none", MS_BIND, nullptr);
    ASSERT_EQ(mount("none", kInterfacesFile, "none", MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const Setting address = Find("eth0.address");
    const velkctl::Answer failed{.result = LIB_VELK_FAILURE};
    const velkctl::Problem of_get = ProblemOfGet("", address, failed);
    EXPECT_EQ(of_get.detail,
              "likely cause: /etc/network/interfaces: there is no stanza; no line begins with "
              "'iface eth0 inet static' or '... dhcp'");
    EXPECT_EQ(ProblemOfSet("", address, failed).detail,
              "likely cause: /etc/network/interfaces: this user may not write the file: Read-only "
              "file system");
}

TEST_F(LikelyCausesTest, AFailedGetIsNotBlamedOnAFullFolderForEditCopies) {
    const testkit::Emptied small("/var/tmp", "size=32k");
    const velkctl::Answer failed{.result = LIB_VELK_FAILURE};
    EXPECT_EQ(ProblemOfGet("", Find("administrator"), failed).detail,
              "likely cause: /var/libvelk/libvelk: the file is missing");
    EXPECT_EQ(ProblemOfGet("", Find("eth0.link-speed"), failed).detail,
              "likely cause: /var/tmp: the file system is full: 32768 bytes are free")
        << "the output of ethtool goes there";
    WriteFile(kIdentity, "");
    EXPECT_EQ(ProblemOfGet("", Find("administrator"), failed).detail, "");
    EXPECT_EQ(ProblemOfSet("", Find("administrator"), failed).detail,
              "likely cause: /var/tmp: the file system is full: 32768 bytes are free");
}

TEST_F(LikelyCausesTest, AFindingThatOnlyHindersAGetIsNoCauseOfAFailedSet) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet bootp\n\taddress 10.0.0.2\n" + std::string(kEth1Address));
    const velkctl::Answer failed{.result = LIB_VELK_FAILURE};
    EXPECT_EQ(ProblemOfGet("", Find("eth0.address"), failed).detail,
              "likely cause: /etc/network/interfaces:1: 'bootp' is neither static nor dhcp");
    EXPECT_EQ(ProblemOfSet("", Find("eth0.address"), failed).detail, "");
}

TEST_F(LikelyCausesTest, AMissingToolIsFound) {
    WriteFile(kIdentity, "ADMINISTRATOR=old\n");
    setenv("PATH", "/tmp", 1);
    Set("administrator", "new");
    EXPECT_EQ(FirstOf("administrator"),
              "cat is not installed; fix: install it in a folder that velkctl searches, such as "
              "/usr/bin");
}

TEST_F(LikelyCausesTest, ProblemsPrecedeWarningsAndLinesOfAFileComeFirst) {
    WriteFile(kInterfacesFile, "iface eth1 inet static\n\tgateway  10.0.0.1\n\tgateway 10.0.0.2\n");
    setenv("PATH", "/tmp", 1);
    const Findings causes = LikelyCauses(Find("eth1.gateway"));
    ASSERT_EQ(causes.size(), 3U);
    EXPECT_EQ(causes[0].subject, "cat");
    EXPECT_EQ(causes[0].severity, Severity::kProblem);
    EXPECT_EQ(causes[1].line, 2U);
    EXPECT_EQ(causes[2].line, 3U);
    WriteFile(kInterfacesFile, "iface eth1 inet static\n");
    EXPECT_EQ(LikelyCauses(Find("eth1.gateway"))[0].line, 1U);
    EXPECT_EQ(LikelyCauses(Find("eth1.gateway"))[1].subject, "cat");
}

TEST_F(LikelyCausesTest, EachCauseHasItsImpact) {
    WriteFile(kInterfacesFile, "iface eth1 inet dhcp\n\thwaddress ether 02:00:00:00:00:01\n");
    EXPECT_EQ(LikelyCauses(Find("eth1.gateway")).front().impact, Impact::kSetting);
    EXPECT_EQ(LikelyCauses(Find("eth1.address")).front().impact, Impact::kReading);
}

TEST_F(LikelyCausesTest, TheDaemonIsACauseOnlyForItsConfiguration) {
    EXPECT_EQ(FirstOf("eth1.ssid"),
              "/tmp/WlanAplToWlanSock: its socket is missing; no adapter is attached; fix: "
              "plug in an adapter; if that does not start the wireless daemon, start it");
    testkit::FakeDaemon daemon;
    EXPECT_EQ(FirstOf("eth1.ssid"),
              "/tmp/WlanAplToWlanSock: the wireless daemon was sent the value, but returns another "
              "one; fix: set it again; if it differs again, restart the wireless daemon");
    EXPECT_TRUE(daemon.requests().empty()) << "it was asked";
    for (const Setting& setting : velkctl::Settings()) {
        const Findings causes = LikelyCauses(setting);
        EXPECT_EQ(!causes.empty() && causes.front().subject == "the wireless daemon",
                  setting.row->interfaces == velkctl::kEth1 && setting.can_set())
            << setting.name();
    }
}

TEST_F(LikelyCausesTest, ATabIsNoCauseIfASetAddsALine) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet dhcp\n\tgateway\t10.0.0.1\n" + std::string(kEth1Address));
    EXPECT_EQ(FirstOf("eth0.gateway"), "");
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n\tgateway\t10.0.0.1\n");
    EXPECT_EQ(FirstOf("eth0.gateway"),
              "/etc/network/interfaces:2: no blank follows the word 'gateway'; fix: instead of "
              "line 2 write \"gateway 10.0.0.1\"");
}

TEST_F(LikelyCausesTest, AFindingThatDoesNotAffectTheSettingIsNoCause) {
    // No SNMP agent's file, an old edit copy, a lock that others cannot take.
    WriteFile(kIdentity, "ADMINISTRATOR=x\n");
    WriteFile("/var/tmp/libvelk", "");
    WriteFile("/var/tmp/vklib_lock", "");
    EXPECT_EQ(FirstOf("administrator"), "");
}

TEST_F(LikelyCausesTest, OnlyFindingsThatAffectTheSettingAreReturned) {
    EXPECT_EQ(FormatFindings(velkctl::ExamineFor(Find("web-update"))),
              "problem: ntp, ntp-server and web-update can be neither read nor set\n"
              "  /var/cron/tabs/root: the file is missing\n"
              "  fix: put the device's own file there\n");
    for (const Setting& setting : velkctl::Settings()) {
        for (const velkctl::Finding& finding : velkctl::ExamineFor(setting)) {
            EXPECT_TRUE(Includes(finding.affected, setting)) << setting.name();
        }
    }
}

TEST_F(LikelyCausesTest, TextsEscapeControlCharacters) {
    EXPECT_EQ(CauseText({.description = "\x1b[2J", .file = "/f", .line = 3, .remedy = "\x07"}),
              "/f:3: \\x1b[2J; fix: \\x07");
}

}  // namespace
