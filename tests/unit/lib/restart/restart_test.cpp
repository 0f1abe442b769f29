// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/fake_shell.h"
#include "support/machine.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Return;

constexpr char kEthtool[] = "sudo /usr/sbin/ethtool eth0";
constexpr char kAskLink[] = "system sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result";
constexpr char kRemove[] = "system rm /var/tmp/get_result";

class RestartTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }
    static void PlugAdapter() {
        testkit::WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
    }
    void PlugCable() { shell.Prints(kEthtool, {"Link detected: yes\n"}); }
    void PullCable() { shell.Prints(kEthtool, {"Link detected: no\n"}); }
    // The frame's own log line, not the restart's, is left out.
    std::vector<std::string> Story() {
        std::vector<std::string> story = libc().Story();
        std::erase(story, "log VkLibLock indelible");
        return story;
    }
    std::vector<int> TypesSentToDaemon() {
        daemon.Stop();
        return daemon.types();
    }
    int Restart(const std::string& interface, char parameter = 0) {
        return Execute(VELK_RESTART, VELK_CMD_RESTART, interface, std::string_view(&parameter, 1));
    }

    testkit::FakeShell shell;
    testkit::FakeDaemon daemon;
};

TEST_F(RestartTest, AWiredRestartWithoutAnAdapterRestartsTheWiredPortOnly) {
    PlugCable();
    EXPECT_EQ(Restart("eth0"), 0);
    EXPECT_THAT(Story(),
                ElementsAre("system sudo ifdown eth0", "sleep 1", "system sudo ifup eth0"));
    EXPECT_THAT(TypesSentToDaemon(), IsEmpty());
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
}

TEST_F(RestartTest, AWiredRestartWithTheCableOutOnlyAsksForTheLink) {
    PlugAdapter();
    PullCable();
    EXPECT_EQ(Restart("eth0"), 0);
    EXPECT_THAT(Story(), ElementsAre("system sudo ifdown eth0", "sleep 1", "system sudo ifup eth0",
                                     "sleep 5", kAskLink, kRemove));
}

TEST_F(RestartTest, AWiredRestartWithTheCableInRestartsTheWirelessInterfaceTwice) {
    PlugAdapter();
    PlugCable();
    EXPECT_EQ(Restart("eth0"), 0);
    EXPECT_THAT(Story(),
                ElementsAre("system sudo ifdown eth0", "sleep 1", "system sudo ifup eth0",
                            "sleep 5", kAskLink, kRemove,  //
                            "sleep 30", "system sudo ifdown eth1", "system sudo ifup eth1",
                            "sleep 30", "system sudo ifdown eth1", "system sudo ifup eth1"));
    EXPECT_THAT(TypesSentToDaemon(), IsEmpty());
}

TEST_F(RestartTest, AWiredRestartReturnsTheResultOfItsIfup) {
    libc().Script(Call::kSystem, {Return(0), Fail(EAGAIN)});
    EXPECT_EQ(Restart("eth0"), -1);
    libc().Script(Call::kSystem, {Fail(EAGAIN), Return(256)});
    EXPECT_EQ(Restart("eth0"), 0) << "a failed ifdown and the tools' own failures are not seen";
}

TEST_F(RestartTest, LaterCommandsDoNotChangeTheWiredPortsAnswer) {
    PlugAdapter();
    PlugCable();
    libc().Script(Call::kSystem, {Return(0), Return(0), Return(0), Return(0), Fail(EAGAIN),
                                  Fail(EAGAIN), Fail(EAGAIN), Fail(EAGAIN)});
    EXPECT_EQ(Restart("eth0"), 0);
    libc().Script(Call::kSystem, {Return(0), Fail(EAGAIN)});
    EXPECT_EQ(Restart("eth0"), -1) << "though the wireless interface was restarted well";
}

TEST_F(RestartTest, TheWiredPortIgnoresTheParameter) {
    EXPECT_EQ(Restart("eth0", 2), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ifdown eth0", "sudo ifup eth0"));
}

TEST_F(RestartTest, AWirelessRestartWithoutAnAdapterIsRefused) {
    EXPECT_EQ(Restart("eth1"), -5);
    EXPECT_EQ(Restart("eth1", 2), -5);
    EXPECT_THAT(Story(), IsEmpty());
    EXPECT_THAT(TypesSentToDaemon(), IsEmpty());
}

TEST_F(RestartTest, AWirelessRestartWithTheCableInBringsTheInterfaceUpWithoutAnAddress) {
    PlugAdapter();
    PlugCable();
    EXPECT_EQ(Restart("eth1"), 0);
    EXPECT_THAT(Story(), ElementsAre("system sudo ifdown eth1", "sleep 1", kAskLink, kRemove,
                                     "system sudo ifconfig eth1 up"));
    EXPECT_THAT(TypesSentToDaemon(), IsEmpty());
}

TEST_F(RestartTest, AWirelessRestartWithTheCableOutRunsIfupAndNotifiesTheDaemon) {
    PlugAdapter();
    PullCable();
    EXPECT_EQ(Restart("eth1"), 0);
    EXPECT_THAT(Story(), ElementsAre("system sudo ifdown eth1", "sleep 1", kAskLink, kRemove,
                                     "system sudo ifup eth1 &"));
    ASSERT_THAT(TypesSentToDaemon(), ElementsAre(1));
    EXPECT_EQ(daemon.requests()[0], testkit::ShortBytes(1) + std::string(238, '\0'));
    EXPECT_EQ(libc().Order({Call::kSystem, Call::kSendto}).back(), "sendto")
        << "the daemon is told when the interface is on its way up";
}

TEST_F(RestartTest, EveryParameterExceptTwoRestartsTheInterface) {
    PlugAdapter();
    PlugCable();
    for (const char parameter : {'\0', '\1', '\3', '\xff'}) {
        libc().Reset();
        const testkit::FakeShell again;
        EXPECT_EQ(Restart("eth1", parameter), 0);
        EXPECT_EQ(libc().Commands()[0], "sudo ifdown eth1");
    }
}

TEST_F(RestartTest, NotifyOnlyWithTheCableInDoesNothing) {
    PlugAdapter();
    PlugCable();
    EXPECT_EQ(Restart("eth1", 2), 0);
    EXPECT_THAT(Story(), ElementsAre(kAskLink, kRemove));
    EXPECT_THAT(TypesSentToDaemon(), IsEmpty());
}

TEST_F(RestartTest, NotifyOnlyWithTheCableOutNotifiesTheDaemon) {
    PlugAdapter();
    PullCable();
    EXPECT_EQ(Restart("eth1", 2), 0);
    EXPECT_THAT(Story(), ElementsAre(kAskLink, kRemove));
    EXPECT_THAT(TypesSentToDaemon(), ElementsAre(1));
}

TEST_F(RestartTest, AMissingDaemonIsAFailure) {
    PlugAdapter();
    PullCable();
    daemon.Stop();
    EXPECT_EQ(Restart("eth1", 2), -1);
    EXPECT_EQ(Restart("eth1"), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("SendWlanRequestMessage connect:errno=2:No such file or directory",
                            "VkLibLock indelible",
                            "SendWlanRequestMessage connect:errno=2:No such file or directory"));
}

TEST_F(RestartTest, AShellThatCannotBeRunForTheLastStepIsAFailure) {
    PlugAdapter();
    PlugCable();
    libc().Script(Call::kSystem, {Return(0), Return(0), Return(0), Fail(EAGAIN)});
    EXPECT_EQ(Restart("eth1"), -1);
}

TEST_F(RestartTest, AFailedIfupInTheBackgroundIsNotSeen) {
    PlugAdapter();
    PullCable();
    libc().Script(Call::kSystem, {Fail(EAGAIN), Return(0), Return(0), Fail(EAGAIN)});
    EXPECT_EQ(Restart("eth1"), 0);
    EXPECT_THAT(TypesSentToDaemon(), ElementsAre(1));
}

TEST_F(RestartTest, AnyOtherNameIsRestartedAsWireless) {
    PlugAdapter();
    PlugCable();
    EXPECT_EQ(::Restart(testkit::MakeRequest(VELK_RESTART, 1, "eth0:1"), nullptr), 0);
    EXPECT_EQ(libc().Commands()[0], "sudo ifdown eth0:1");
    EXPECT_EQ(libc().Commands().back(), "sudo ifconfig eth0:1 up");
}

TEST_F(RestartTest, AnyOtherNameWithTheCableOutGoesUpInTheBackground) {
    PlugAdapter();
    PullCable();
    EXPECT_EQ(::Restart(testkit::MakeRequest(VELK_RESTART, 1, "eth0:1"), nullptr), 0);
    EXPECT_EQ(libc().Commands().back(), "sudo ifup eth0:1 &");
}

TEST_F(RestartTest, TheWiredRestartTakesTheRequestsName) {
    EXPECT_EQ(RestartWired(testkit::MakeRequest(VELK_RESTART, 1, "eth7"), nullptr), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ifdown eth7", "sudo ifup eth7"));
}

TEST_F(RestartTest, TheAdapterIsLookedForWhenTheWiredPortIsUpAgain) {
    PullCable();
    libc().OnCall(Call::kSleep, [](const testkit::Event&) { PlugAdapter(); });
    EXPECT_EQ(Restart("eth0"), 0);
    EXPECT_EQ(libc().Texts(Call::kSleep), (std::vector<std::string>{"1", "5"}));
}

TEST_F(RestartTest, ARestartNeedsAnInterface) {
    EXPECT_EQ(Restart(""), -4);
    EXPECT_THAT(libc().Logs(), ElementsAre("paramater matching"));
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

}  // namespace
