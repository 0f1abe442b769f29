// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the wireless daemon and the adapter.
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "velkctl/doctor/checks.h"

namespace {

using testkit::WriteFile;
using velkctl::FormatFindings;

class DaemonCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine() {
        velkctl::Report report(velkctl::Report::Form::kText);
        return FormatFindings(velkctl::CheckDaemon(report));
    }
    static SMsgConf WithChannel(uint16_t channel) {
        SMsgConf conf{};
        conf.channel = channel;
        return conf;
    }
    static void AttachAdapter() { WriteFile("/proc/bus/usb/devices", "S:  Product=QT4408RKM\n"); }
};

TEST_F(DaemonCheck, OnlyWarnsOfNoDaemonWithoutAnAdapter) {
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    EXPECT_EQ(Examine(),
              "warning: the wireless daemon does not run\n"
              "  /tmp/WlanAplToWlanSock: its socket is missing; no adapter is attached\n"
              "  fix: plug in an adapter; if that does not start the wireless daemon, start it\n");
}

TEST_F(DaemonCheck, SaysNothingAboutADaemonThatAnswers) {
    AttachAdapter();
    testkit::FakeDaemon daemon;
    for (const uint16_t channel : {uint16_t{1}, uint16_t{13}}) {
        daemon.SetConf(WithChannel(channel));
        EXPECT_EQ(Examine(), "") << channel;
    }
}

TEST_F(DaemonCheck, WarnsOfARecordWithoutAChannel) {
    AttachAdapter();
    testkit::FakeDaemon daemon;
    daemon.SetConf(WithChannel(14));
    EXPECT_EQ(Examine(),
              "warning: the wireless daemon may not answer with its configuration\n"
              "  /tmp/WlanAplToWlanSock: its record has channel 14, which is not valid\n"
              "  fix: set eth1.channel, or restart the wireless daemon\n");
    daemon.SetConf(WithChannel(0));
    EXPECT_THAT(Examine(), testing::HasSubstr("its record has channel 0, which is not valid"));
}

TEST_F(DaemonCheck, WarnsOfAnAdapterThatIsNotAttached) {
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()), "") << "the list itself is missing";
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()),
              "warning: wireless adapter is not attached\n"
              "  /proc/bus/usb/devices: the list has no supported adapter\n"
              "  the settings of eth1 about adapter and connection are refused\n"
              "  fix: plug in one that /usr/local/share/apps/wlan/supportlist.ini names\n");
    AttachAdapter();
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()), "");
}

TEST_F(DaemonCheck, FindsNoDaemon) {
    AttachAdapter();
    EXPECT_EQ(Examine(),
              "problem: the wireless daemon does not run\n"
              "  /tmp/WlanAplToWlanSock: its socket is missing\n"
              "  fix: start the wireless daemon\n");
    WriteFile("/tmp/WlanAplToWlanSock", "");
    EXPECT_EQ(Examine(),
              "problem: the wireless daemon does not run\n"
              "  /tmp/WlanAplToWlanSock: no process listens at its socket\n"
              "  fix: start the wireless daemon\n");
}

}  // namespace
