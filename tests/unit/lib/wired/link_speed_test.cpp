// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>
#include <net/if.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Data;
using testkit::Fail;

constexpr char kShowSpeed[] = "sudo ethtool eth0";

// ethtool 3.x, as older devices carry it.
constexpr char kOldOutput[] =
    "Settings for eth0:\n"
    "\tSupported ports: [ TP MII ]\n"
    "\tSupported link modes:   10baseT/Half 10baseT/Full \n"
    "\t                        100baseT/Half 100baseT/Full \n"
    "\tSupports auto-negotiation: Yes\n"
    "\tAdvertised auto-negotiation: Yes\n"
    "\tSpeed: 100Mb/s\n"
    "\tDuplex: Half\n"
    "\tPort: MII\n"
    "\tPHYAD: 1\n"
    "\tTransceiver: internal\n"
    "\tAuto-negotiation: off\n"
    "\tLink detected: yes\n";

// ethtool 6.x on a tap interface.
constexpr char kVirtualOutput[] =
    "Settings for eth0:\n"
    "\tSupported ports: [  ]\n"
    "\tSupported link modes:   Not reported\n"
    "\tSupported pause frame use: No\n"
    "\tSupports auto-negotiation: No\n"
    "\tSupported FEC modes: Not reported\n"
    "\tAdvertised link modes:  Not reported\n"
    "\tAdvertised auto-negotiation: No\n"
    "\tSpeed: 10Mb/s\n"
    "\tDuplex: Full\n"
    "\tAuto-negotiation: off\n"
    "\tPort: Twisted Pair\n"
    "\tPHYAD: 0\n"
    "\tTransceiver: internal\n"
    "        Current message level: 0xffffffa1 (-95)\n"
    "                               drv ifup tx_err tx_queued intr tx_done\n"
    "\tLink detected: yes\n";

class LinkSpeedTest : public testkit::DeviceTest {
  protected:
    int Get(const std::string& output) {
        shell.Prints(kShowSpeed, {output});
        return Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0");
    }
    // The mode of such an output.
    int Mode(const std::string& output) {
        EXPECT_EQ(Get(output), 0);
        EXPECT_EQ(Data(response).substr(1), std::string(511, '\0')) << "one byte is written";
        return response.data[0];
    }
    int Set(char mode) {
        return Execute(VELK_SET, VELK_CMD_LINK_SPEED, "eth0", std::string_view(&mode, 1));
    }
    testkit::FakeShell shell;
};

TEST_F(LinkSpeedTest, ReadsEachMode) {
    EXPECT_EQ(Mode("Speed: 100Mb/s\nDuplex: Full\nAuto-negotiation: on\n"), 1);
    EXPECT_EQ(Mode("Speed: 100Mb/s\nDuplex: Full\nAuto-negotiation: off\n"), 2);
    EXPECT_EQ(Mode("Speed: 100Mb/s\nDuplex: Half\nAuto-negotiation: off\n"), 3);
    EXPECT_EQ(Mode("Speed: 10Mb/s\nDuplex: Full\nAuto-negotiation: off\n"), 4);
    EXPECT_EQ(Mode("Speed: 10Mb/s\nDuplex: Half\nAuto-negotiation: off\n"), 5);
}

TEST_F(LinkSpeedTest, ReadsOldAndNewOutputs) {
    EXPECT_EQ(Mode(kOldOutput), 3);
    EXPECT_EQ(Mode(kVirtualOutput), 4);
}

TEST_F(LinkSpeedTest, RunsExactlyTheseLines) {
    EXPECT_EQ(Mode(kOldOutput), 3);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ethtool eth0 > /var/tmp/get_result", "rm /var/tmp/get_result"));
    EXPECT_FALSE(testkit::Exists(testkit::kResultFile));
}

TEST_F(LinkSpeedTest, WithNegotiationTheSpeedDoesNotMatter) {
    EXPECT_EQ(Mode("Speed: 1000Mb/s\nDuplex: Full\nAuto-negotiation: on\n"), 1);
    EXPECT_EQ(Mode("Speed: Unknown!\nAuto-negotiation: on\n"), 1);
}

TEST_F(LinkSpeedTest, LaterLinesOverwriteEarlierOnes) {
    EXPECT_EQ(Mode("Auto-negotiation: on\nAuto-negotiation: off\nSpeed: 10Mb/s\nSpeed: 100Mb/s\n"
                   "Duplex: Full\nDuplex: Half\n"),
              3);
}

TEST_F(LinkSpeedTest, OnlyTheFirstTestThatHoldsCountsOnALine) {
    EXPECT_EQ(Mode("Auto-negotiation: off Speed: 10Mb/s\nSpeed: 100Mb/s Duplex: Full\n"), 3);
}

TEST_F(LinkSpeedTest, TheTestsComeInTheirOrder) {
    EXPECT_EQ(Mode("Auto-negotiation: off Auto-negotiation: on\n"), 1);
    EXPECT_EQ(Mode("Speed: 10Mb/s Speed: 100Mb/s\nDuplex: Half Duplex: Full\n"), 2);
}

TEST_F(LinkSpeedTest, WithoutADuplexLineItIsHalf) {
    EXPECT_EQ(Mode("Speed: 100Mb/s\n"), 3);
}

TEST_F(LinkSpeedTest, TheTextsAreCaseSensitive) {
    EXPECT_EQ(Get("speed: 100Mb/s\nauto-negotiation: on\n"), -1);
    EXPECT_EQ(Mode("Speed: 100Mb/s\nduplex: full\n"), 3);
}

TEST_F(LinkSpeedTest, ASpeedOf1000IsAnError) {
    EXPECT_EQ(Get("Speed: 1000Mb/s\nDuplex: Full\nAuto-negotiation: off\n"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ecmd.autoneg=0, ecmd.speed=0"));
    EXPECT_EQ(Data(response), std::string(512, '\0'));
}

TEST_F(LinkSpeedTest, NoSpeedLineIsAnError) {
    EXPECT_EQ(Get("Duplex: Full\nAuto-negotiation: off\n"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ecmd.autoneg=0, ecmd.speed=0"));
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ethtool eth0 > /var/tmp/get_result", "rm /var/tmp/get_result"));
}

TEST_F(LinkSpeedTest, AnEmptyOutputIsAnError) {
    EXPECT_EQ(Get(""), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ecmd.autoneg=0, ecmd.speed=0"));
}

TEST_F(LinkSpeedTest, AMissingResultFileIsAnError) {
    shell.LeavesNoFile(kShowSpeed);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ifstream"));
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ethtool eth0 > /var/tmp/get_result"))
        << "there is nothing to remove";
}

TEST_F(LinkSpeedTest, AShellThatCannotBeRunIsAnError) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=11:Resource temporarily unavailable"));
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ethtool eth0 > /var/tmp/get_result"))
        << "there is nothing to remove";
}

TEST_F(LinkSpeedTest, HostileOutputsAreReadWithinTheirBounds) {
    EXPECT_EQ(Get(std::string(10 * 1024, 'S') + std::string("\0Speed: 1\n\0", 11)), -1);
    EXPECT_EQ(Mode(std::string(10 * 1024, ':') + "Speed: 10Mb/s"), 5);
}

TEST_F(LinkSpeedTest, SetsEachMode) {
    for (const char mode : {'\1', '\2', '\3', '\4', '\5'}) {
        EXPECT_EQ(Set(mode), 0);
    }
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ethtool -s eth0 autoneg on",
                            "sudo ethtool -s eth0 speed 100 duplex full autoneg off",
                            "sudo ethtool -s eth0 speed 100 duplex half autoneg off",
                            "sudo ethtool -s eth0 speed 10 duplex full autoneg off",
                            "sudo ethtool -s eth0 speed 10 duplex half autoneg off"));
}

TEST_F(LinkSpeedTest, AnyOtherByteIsRefusedAndNothingIsRun) {
    for (int mode = 0; mode < 256; ++mode) {
        if (mode < 1 || mode > 5) {
            EXPECT_EQ(Set(static_cast<char>(mode)), -4) << mode;
        }
    }
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(LinkSpeedTest, AToolThatFailsIsNotNoticed) {
    libc().Script(Call::kSystem, {testkit::Return(256)});
    EXPECT_EQ(Set(1), 0);
}

TEST_F(LinkSpeedTest, AShellThatCannotBeRunFailsASet) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    EXPECT_EQ(Set(1), -1);
}

TEST_F(LinkSpeedTest, NullBuffersAreRefused) {
    ifreq ifr{};
    EXPECT_EQ(GetLinkSpeed(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(SetLinkSpeed(-1, ifr, 0, nullptr), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(LinkSpeedTest, TheWirelessInterfaceHasNoLinkSpeed) {
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth1"), -4);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_LINK_SPEED, "eth1", "\1"), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

}  // namespace
