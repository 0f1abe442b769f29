// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The wireless settings through the whole tool, with a daemon that the library asks.
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <net/if.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/fake_interfaces.h"
#include "support/fake_shell.h"
#include "velkctl/cli/command_line.h"
#include "velkctl/report/output.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using velkctl::ExitStatus;

template <size_t kSize>
void PutText(char (&field)[kSize], uint16_t& length, std::string_view text) {
    memcpy(field, text.data(), text.size());
    length = static_cast<uint16_t>(text.size());
}

class WirelessSettings : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::WriteFile("/proc/bus/usb/devices", "S:  Product=QT4408RKM\n");
        shell.Prints("sudo /usr/sbin/ethtool eth0", {"\tLink detected: no\n"});
    }
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }

    ExitStatus Run(const std::vector<std::string>& arguments) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        velkctl::Report report(velkctl::RequestedForm(arguments));
        const ExitStatus status = velkctl::RunCommandLine(arguments, report);
        report.Finish(status);
        (void)velkctl::FinishPrinting();
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }
    std::string Get(const std::string& name) {
        EXPECT_EQ(Run({"get", name}), ExitStatus::kDone) << error;
        EXPECT_EQ(error, "");
        return output;
    }
    void Set(const std::string& name, const std::string& value) {
        EXPECT_EQ(Run({"set", name, value}), ExitStatus::kDone) << error;
        EXPECT_EQ(output, "");
        EXPECT_EQ(error, "");
    }
    // Returns the daemon's record. It reads its messages in order: an answer means that it has
    // stored all.
    SMsgConf Stored() {
        (void)Get("eth1.ssid");
        return daemon.conf();
    }
    // Holds that a value is refused without a word to the daemon.
    void Refuses(const std::vector<std::string>& arguments, const std::string& message) {
        EXPECT_EQ(Run(arguments), ExitStatus::kInvalid);
        EXPECT_EQ(output, "");
        EXPECT_EQ(error, "velkctl: " + velkctl::MessageLines({message}) + "\n");
        EXPECT_THAT(daemon.requests(), IsEmpty());
        EXPECT_FALSE(testkit::Exists("/var/tmp/vklib_lock"));
    }

    testkit::FakeDaemon daemon;
    testkit::FakeInterfaces interfaces;
    testkit::FakeShell shell;
    std::string output;
    std::string error;
};

TEST_F(WirelessSettings, ShowsTheConfiguration) {
    SMsgConf conf{};
    PutText(conf.ssid, conf.ssid_length, "my n\xc3\xa4t\x1b");
    conf.service_set = 1;
    conf.dot11_phy_conf = 1;
    conf.channel = 11;
    conf.auth = 3;
    conf.encryption = 1;
    conf.wep_default = 4;
    daemon.SetConf(conf);
    EXPECT_EQ(Get("eth1.ssid"), "my n\xc3\xa4t\\x1b\n");
    EXPECT_EQ(Get("eth1.service-set"), "infrastructure\n");
    EXPECT_EQ(Get("eth1.standards-enabled"), "3\n");
    EXPECT_EQ(Get("eth1.channel"), "11\n");
    EXPECT_EQ(Get("eth1.authentication"), "4\n");
    EXPECT_EQ(Get("eth1.encryption"), "wep\n");
    EXPECT_EQ(Get("eth1.wep-default-key"), "4\n");
}

TEST_F(WirelessSettings, ShowsTheState) {
    SMsgState state{};
    memcpy(state.product, "Vendor=1 Rev= 1.04", 18);
    memcpy(state.software_version, "2.1b", 4);
    state.region = 2;
    memcpy(state.access_point, "\x00\x1a\x2b\x3c\x4d\x5e", 6);
    state.dot11_phy = 1;
    memcpy(state.rate, "\x36\x00\xff\x01", 4);
    state.signal[0] = 70;
    state.signal[1] = 65535;
    daemon.SetState(state);
    EXPECT_EQ(Get("eth1.hardware-version"), "1.04\n");
    EXPECT_EQ(Get("eth1.software-version"), "2.1b\n");
    EXPECT_EQ(Get("eth1.region"), "3\n");
    EXPECT_EQ(Get("eth1.access-point"), "00:1A:2B:3C:4D:5E\n");
    EXPECT_EQ(Get("eth1.standard"), "2\n");
    EXPECT_EQ(Get("eth1.rate"), "3600ff01\n");
    EXPECT_EQ(Get("eth1.signal"), "70 65535\n");
}

TEST_F(WirelessSettings, ShowsEmptyValues) {
    EXPECT_EQ(Get("eth1.ssid"), "''\n");
    EXPECT_EQ(Get("eth1.psk"), "none\n");
    EXPECT_EQ(Get("eth1.wep-key-4"), "none\n");
    EXPECT_EQ(Get("eth1.hardware-version"), "none\n");
}

TEST_F(WirelessSettings, ChangesTheConfiguration) {
    Set("eth1.ssid", "my net");
    Set("eth1.service-set", "infrastructure");
    Set("eth1.standards-enabled", "3");
    Set("eth1.channel", "13");
    Set("eth1.authentication", "2");
    Set("eth1.encryption", "wep");
    Set("eth1.wep-default-key", "2");
    Set("eth1.wep-key-3", "abcde");
    Set("eth1.psk", "correct horse");
    const SMsgConf conf = Stored();
    EXPECT_EQ(std::string(conf.ssid, conf.ssid_length), "my net");
    EXPECT_EQ(conf.service_set, 1);
    EXPECT_EQ(conf.dot11_phy_conf, 1);
    EXPECT_EQ(conf.channel, 13);
    EXPECT_EQ(conf.auth, 1);
    EXPECT_EQ(conf.encryption, 1);
    EXPECT_EQ(conf.wep_default, 2);
    EXPECT_EQ(std::string(conf.wep_key[2].key, conf.wep_key[2].length), "abcde");
    EXPECT_EQ(std::string(conf.psk, conf.psk_length), "correct horse");
}

TEST_F(WirelessSettings, ClearsTexts) {
    SMsgConf conf{};
    PutText(conf.ssid, conf.ssid_length, "net");
    PutText(conf.psk, conf.psk_length, "hunter22");
    PutText(conf.wep_key[0].key, conf.wep_key[0].length, "abcde");
    daemon.SetConf(conf);
    Set("eth1.ssid", "");
    Set("eth1.psk", "none");
    Set("eth1.wep-key-1", "none");
    EXPECT_EQ(Stored().ssid_length, 0);
    EXPECT_EQ(Stored().psk_length, 0);
    EXPECT_EQ(Stored().wep_key[0].length, 0);
}

TEST_F(WirelessSettings, SaysThatTheWepKeyInUseCannotBeCleared) {
    SMsgConf conf{};
    conf.encryption = 1;
    conf.wep_default = 1;
    daemon.SetConf(conf);
    EXPECT_EQ(Run({"set", "eth1.wep-key-1", "none"}), ExitStatus::kInvalid);
    EXPECT_EQ(error,
              "velkctl: eth1.wep-key-1: the key in use cannot be cleared\n"
              "  eth1.encryption is wep, and eth1.wep-default-key names it\n"
              "  fix: set eth1.wep-default-key or eth1.encryption first\n");
    EXPECT_THAT(daemon.types(), ElementsAre(VELK_WLAN_REPORT, VELK_WLAN_REPORT))
        << "it was sent no configuration";
}

TEST_F(WirelessSettings, RefusedValuesAreNotSent) {
    Refuses({"set", "eth1.channel", "14"},
            "eth1.channel: '14' is not valid; give a number from 1 to 13");
    Refuses({"set", "eth1.service-set", "1"},
            "eth1.service-set: '1' is not valid; give infrastructure or ad-hoc");
    Refuses({"set", "eth1.ssid", std::string(33, 'x')},
            "eth1.ssid: 33 bytes given; give a text of at most 32 bytes");
    Refuses({"set", "eth1.psk", std::string(65, 'x')},
            "eth1.psk: 65 bytes given; give a text of 1 to 64 bytes, or none");
    Refuses({"set", "eth1.rate", "00000000"},
            "eth1.rate: cannot be set, only read; 'velkctl get eth1.rate' reads it");
}

class Secrets : public WirelessSettings {
  protected:
    void SetUp() override {
        WirelessSettings::SetUp();
        SMsgConf conf{};
        PutText(conf.psk, conf.psk_length, "hunter22");
        PutText(conf.wep_key[1].key, conf.wep_key[1].length, "hunter22hunte");
        daemon.SetConf(conf);
    }
    void TearDown() override {
        EXPECT_THAT(output, Not(HasSubstr("hunter")));
        EXPECT_THAT(error, Not(HasSubstr("hunter")));
        WirelessSettings::TearDown();
    }
};

TEST_F(Secrets, AreMasked) {
    EXPECT_EQ(Get("eth1.wep-key-2"), "********\n");
    EXPECT_EQ(Get("eth1.psk"), "********\n");
    EXPECT_EQ(Run({"get", "eth1.psk", "eth1.wep-key-1"}), ExitStatus::kDone);
    EXPECT_EQ(output, "eth1.psk        ********\neth1.wep-key-1  none\n");
}

TEST_F(Secrets, AreShownToThoseWhoAsk) {
    EXPECT_EQ(Run({"get", "--show-secrets", "eth1.psk"}), ExitStatus::kDone);
    EXPECT_EQ(output, "hunter22\n");
    EXPECT_EQ(Run({"get", "eth1.psk", "eth1.wep-key-2", "eth1.wep-key-1", "--show-secrets"}),
              ExitStatus::kDone);
    EXPECT_EQ(output,
              "eth1.psk        hunter22\neth1.wep-key-2  hunter22hunte\neth1.wep-key-1  none\n");
    output.clear();
}

TEST_F(Secrets, AreMaskedInTheBytesOfACall) {
    for (const char* id : {"314", "0314", "309"}) {
        EXPECT_EQ(Run({"call", "get", id, "eth1"}), ExitStatus::kDone);
        EXPECT_EQ(output, "LIB_VELK_SUCCESS (0): done\n********\n");
    }
    EXPECT_EQ(Run({"call", "get", "308", "eth1"}), ExitStatus::kDone);
    EXPECT_EQ(output, "LIB_VELK_SUCCESS (0): done\n");
    EXPECT_EQ(Run({"call", "get", "314", "eth1", "--show-secrets"}), ExitStatus::kDone);
    EXPECT_EQ(output,
              "LIB_VELK_SUCCESS (0): done\n"
              "00000000  68 75 6e 74 65 72 32 32                           |hunter22|\n"
              "00000008\n");
    output.clear();
}

TEST_F(Secrets, AreReadFromAFile) {
    testkit::WriteFile("/tmp/key", "hunter33\n");
    Set("eth1.psk", "@/tmp/key");
    const SMsgConf conf = Stored();
    EXPECT_EQ(std::string(conf.psk, conf.psk_length), "hunter33");
    testkit::WriteFile("/tmp/key", "none\n");
    Set("eth1.psk", "@/tmp/key");
    EXPECT_EQ(Stored().psk_length, 0);
}

TEST_F(Secrets, OtherSettingsTakeSuchWordsLiterally) {
    Set("eth1.ssid", "@/tmp/key");
    SMsgConf conf = Stored();
    EXPECT_EQ(std::string(conf.ssid, conf.ssid_length), "@/tmp/key");
    Set("eth1.ssid", "-");
    conf = Stored();
    EXPECT_EQ(std::string(conf.ssid, conf.ssid_length), "-");
}

// Wrong usages with the secret in every place where it could be by mistake.
TEST_F(Secrets, AreNotRepeatedInAnyMessage) {
    const std::vector<std::vector<std::string>> usages{
        {"set", "eth1.psk", "-hunter22"},
        {"set", "eth1.psk", "--hunter22"},
        {"set", "eth1.psk", "hunter22\n"},
        {"set", "eth1.psk", "hunter22", "hunter22"},
        {"set", "eth1.psk", "--psk=hunter22"},
        {"set", "eth1.psk", "@hunter22"},
        {"set", "eth1.psk=hunter22", "hunter22"},
        {"set", "psk=hunter22", "hunter22=hunter22"},
        {"set", "eth1.pskk=hunter22"},
        {"set", "eth1.psk=@hunter22"},
        {"set", "hunter22", "eth1.psk"},
        {"set", "--hunter22", "eth1.psk"},
        {"set", "eth1.pskk", "hunter22"},
        {"set", "eth1.pskk", "--hunter22"},
        {"set", "eth1.wep-key-1", "hunter222"},
        {"eth1.psk=hunter22"},
        {"--eth1.psk=hunter22"},
        {"get", "eth1.psk=hunter22"},
        {"list", "eth1.psk", "hunter22"},
        {"restart", "eth1.psk", "hunter22"},
        {"call", "set", "314", "eth1", "hunter22"},
        {"call", "set", "314", "eth1", "--hunter22"},
        {"call", "set", "314", "hunter22hunter22hunter22"},
        {"call", "set", "eth1.psk", "hunter22"},
        {"call", "set", "314", "eth1", "--hex", "hunter22"},
        {"call", "set", "314", "eth1", "--text", "hunter22", "--text", "hunter22"},
        {"call", "set", "314", "eth1", "--text=hunter22", "--hex=hunter22"},
        {"call", "hunter22", "314"},
    };
    for (const auto& usage : usages) {
        EXPECT_EQ(Run(usage), ExitStatus::kInvalid) << testing::PrintToString(usage);
        EXPECT_EQ(output, "");
        EXPECT_THAT(error, Not(HasSubstr("hunter"))) << testing::PrintToString(usage);
        EXPECT_NE(error, "");
    }
    EXPECT_THAT(daemon.requests(), IsEmpty());
}

TEST_F(WirelessSettings, RestartBringsTheInterfaceDownAndUp) {
    interfaces.AddInterface("eth1", IFF_UP | IFF_RUNNING);
    interfaces.AddAddress("eth1", IFF_UP | IFF_RUNNING, "192.168.1.110", "255.255.255.0");
    testkit::WriteFile("/etc/network/interfaces", "iface eth1 inet dhcp\n");
    EXPECT_EQ(Run({"restart", "eth1"}), ExitStatus::kDone);
    EXPECT_EQ(output + error, "eth1: 192.168.1.110 from DHCP\n");
    EXPECT_THAT(shell.Lines(), testing::Contains("sudo ifdown eth1"));
    EXPECT_THAT(shell.Lines(), testing::Contains("sudo ifup eth1 &"));
    EXPECT_TRUE(testkit::Exists("/var/tmp/vklib_lock"));
}

TEST_F(WirelessSettings, NotifyOnlyRunsNoTools) {
    EXPECT_EQ(Run({"restart", "--notify-only", "eth1"}), ExitStatus::kDone);
    EXPECT_EQ(output + error, "");
    EXPECT_THAT(shell.Lines(), Not(testing::Contains(HasSubstr("ifdown"))));
    EXPECT_THAT(shell.Lines(), Not(testing::Contains(HasSubstr("ifup"))));
}

TEST_F(WirelessSettings, RestartOfTheWiredPort) {
    interfaces.AddInterface("eth0", IFF_UP | IFF_RUNNING);
    interfaces.AddAddress("eth0", IFF_UP | IFF_RUNNING, "192.168.0.10", "255.255.255.0");
    testkit::WriteFile("/etc/network/interfaces",
                       "iface eth0 inet static\n\taddress 192.168.0.10\n");
    EXPECT_EQ(Run({"restart", "eth0"}), ExitStatus::kDone);
    EXPECT_EQ(output + error, "eth0: 192.168.0.10 (static)\n");
    EXPECT_THAT(shell.Lines(), testing::Contains("sudo ifdown eth0"));
    EXPECT_THAT(shell.Lines(), testing::Contains("sudo ifup eth0"));
    EXPECT_EQ(Run({"restart", "eth0", "--quiet"}), ExitStatus::kDone);
    EXPECT_EQ(output + error, "");
}

TEST_F(WirelessSettings, RestartWithoutAnAddressIsReported) {
    interfaces.AddInterface("eth0", IFF_UP | IFF_RUNNING);
    testkit::WriteFile("/etc/network/interfaces", "iface eth0 inet dhcp\n");
    EXPECT_EQ(Run({"restart", "eth0", "--timeout", "1"}), ExitStatus::kNotHeld);
    EXPECT_EQ(output + error,
              "velkctl: eth0: up, but it has no address\n  no DHCP server answered\n"
              "  fix: start one, then run 'velkctl restart eth0' again\n");
}

TEST_F(WirelessSettings, RestartWithoutAStanza) {
    interfaces.AddInterface("eth0", IFF_UP | IFF_RUNNING);
    EXPECT_EQ(Run({"restart", "eth0"}), ExitStatus::kDone);
    EXPECT_EQ(output + error, "eth0: up, without an address: neither static nor DHCP\n");
}

TEST_F(WirelessSettings, RestartNeedsAnAdapter) {
    testkit::WriteFile("/proc/bus/usb/devices", "");
    EXPECT_EQ(Run({"restart", "eth1"}), ExitStatus::kNoAdapter);
    EXPECT_EQ(error,
              "velkctl: eth1: could not be restarted\n"
              "  no supported wireless adapter is attached\n"
              "  fix: attach an adapter of /usr/local/share/apps/wlan/supportlist.ini\n"
              "  result: LIB_VELK_NO_ADAPTER (-5)\n");
    EXPECT_THAT(shell.Lines(), IsEmpty());
}

TEST_F(WirelessSettings, RestartRefusesWrongUsage) {
    Refuses({"restart", "eth2"},
            "restart: 'eth2' is not an interface of the device; did you mean eth0 or eth1?");
    Refuses({"restart", "eth0", "--notify-only"},
            "restart: --notify-only is for eth1; leave it out for eth0");
    EXPECT_THAT(shell.Lines(), IsEmpty());
}

}  // namespace
