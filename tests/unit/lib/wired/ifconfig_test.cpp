// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstring>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::MakeRequest;

// net-tools before 2.0 and busybox print this form.
constexpr char kOutput[] =
    "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10  \n"
    "          inet addr:192.168.0.10  Bcast:192.168.0.255  Mask:255.255.255.0\n"
    "          inet6 addr: fe80::ff:fe00:10/64 Scope:Link\n"
    "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
    "\n"
    "eth1      Link encap:Ethernet  HWaddr 02:00:00:00:00:11  \n"
    "          inet addr:10.0.0.7  Bcast:10.0.0.255  Mask:255.255.0.0\n"
    "\n"
    "lo        Link encap:Local Loopback  \n"
    "          inet addr:127.0.0.1  Mask:255.0.0.0\n"
    "\n";

// net-tools since 2.0.
constexpr char kNewOutput[] =
    "eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
    "        inet 192.168.0.10  netmask 255.255.255.0  broadcast 192.168.0.255\n"
    "        ether 02:00:00:00:00:10  txqueuelen 1000  (Ethernet)\n"
    "\n";

class IfconfigTest : public testkit::DeviceTest {
  protected:
    std::string Address(const std::string& output, const std::string& interface = "eth0") {
        shell.Prints("ifconfig", {output});
        return Read(interface, "inet addr:");
    }
    std::string Mask(const std::string& output, const std::string& interface = "eth0") {
        shell.Prints("ifconfig", {output});
        return Read(interface, "Mask:");
    }
    std::string Read(const std::string& interface, const char* key) {
        char out[VELK_DATA_SIZE] = "unchanged";
        EXPECT_EQ(GetNetAddress(MakeRequest(VELK_GET, 104, interface), key, out), 0);
        return out;
    }
    testkit::FakeShell shell;
};

TEST_F(IfconfigTest, ReadsTheAddressAndTheMask) {
    char out[VELK_DATA_SIZE] = "";
    shell.Prints("ifconfig", {kOutput});
    EXPECT_EQ(GetIpAddress(MakeRequest(VELK_GET, 104, "eth0"), out), 0);
    EXPECT_STREQ(out, "192.168.0.10");
    EXPECT_EQ(GetSubNetMask(MakeRequest(VELK_GET, 105, "eth0"), out), 0);
    EXPECT_STREQ(out, "255.255.255.0");
}

TEST_F(IfconfigTest, RunsExactlyTheseLines) {
    EXPECT_EQ(Address(kOutput), "192.168.0.10");
    EXPECT_THAT(libc().Commands(),
                ElementsAre("ifconfig > /var/tmp/get_result", "rm /var/tmp/get_result"));
    EXPECT_FALSE(testkit::Exists(testkit::kResultFile));
}

TEST_F(IfconfigTest, ReadsTheBlockOfTheInterfaceThatIsAskedFor) {
    EXPECT_EQ(Address(kOutput, "eth1"), "10.0.0.7");
    EXPECT_EQ(Mask(kOutput, "eth1"), "255.255.0.0");
    EXPECT_EQ(Address(kOutput, "lo"), "127.0.0.1");
}

TEST_F(IfconfigTest, AnInterfaceThatIsNotThereChangesNothing) {
    EXPECT_EQ(Address(kOutput, "eth2"), "unchanged");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(IfconfigTest, ABlockWithoutTheKeyChangesNothing) {
    EXPECT_EQ(Address("eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10  \n"
                      "          UP BROADCAST MULTICAST  MTU:1500  Metric:1\n\n" +
                      std::string("lo        Link encap:Local Loopback\n"
                                  "          inet addr:127.0.0.1  Mask:255.0.0.0\n")),
              "unchanged");
}

TEST_F(IfconfigTest, AnEmptyOutputChangesNothing) {
    EXPECT_EQ(Address(""), "unchanged");
    EXPECT_THAT(libc().Commands(),
                ElementsAre("ifconfig > /var/tmp/get_result", "rm /var/tmp/get_result"));
}

TEST_F(IfconfigTest, TheNewOutputFormHasNoSuchKeys) {
    EXPECT_EQ(Address(kNewOutput), "unchanged");
    EXPECT_EQ(Mask(kNewOutput), "unchanged");
}

TEST_F(IfconfigTest, AValueEndsAtTheFirstBlankOrWithTheLine) {
    EXPECT_EQ(Address("eth0 inet addr:1.2.3.4 x\n"), "1.2.3.4");
    EXPECT_EQ(Address("eth0 inet addr:1.2.3.4\tx\n"), "1.2.3.4\tx") << "a tab is no blank";
    EXPECT_EQ(Address("eth0 inet addr:1.2.3.4"), "1.2.3.4");
    EXPECT_EQ(Address("eth0 inet addr:\n"), "");
    EXPECT_EQ(Address("eth0 inet addr: 1.2.3.4\n"), "");
}

TEST_F(IfconfigTest, AnIpv6LineIsNotTheAddress) {
    EXPECT_EQ(Address("eth0 x\n    inet6 addr:fe80::1 Scope:Link\n"), "unchanged");
}

TEST_F(IfconfigTest, TheBlockOfAnAliasReplacesTheAddress) {
    EXPECT_EQ(Address("eth0      Link encap:Ethernet\n"
                      "          inet addr:192.168.0.10  Mask:255.255.255.0\n"
                      "\n"
                      "eth0:1    Link encap:Ethernet\n"
                      "          inet addr:192.168.0.99  Mask:255.255.255.0\n"),
              "192.168.0.99");
}

TEST_F(IfconfigTest, TheLastMatchWins) {
    EXPECT_EQ(Address("eth0 x\n inet addr:1.1.1.1 \n inet addr:2.2.2.2 \n"), "2.2.2.2");
}

TEST_F(IfconfigTest, TheFirstMatchOnALineWins) {
    EXPECT_EQ(Address("eth0 inet addr:1.1.1.1 inet addr:2.2.2.2\n"), "1.1.1.1");
}

TEST_F(IfconfigTest, EmptyLinesDoNotEndABlock) {
    EXPECT_EQ(Address("eth0 x\n\n\n inet addr:1.1.1.1 \n"), "1.1.1.1");
}

TEST_F(IfconfigTest, AnotherHeaderEndsABlock) {
    EXPECT_EQ(Address("eth0 x\neth1 y\n inet addr:1.1.1.1 \n"), "unchanged");
    EXPECT_EQ(Address("eth0 x\n\tinet addr:1.1.1.1 \n"), "unchanged")
        << "a tab starts no block line";
}

TEST_F(IfconfigTest, TheNameMustBeginAHeader) {
    EXPECT_EQ(Address("veth0     Link encap:Ethernet\n"
                      "          inet addr:10.9.9.9  Mask:255.0.0.0\n"),
              "unchanged");
    EXPECT_EQ(Address(std::string(kOutput) + "veth0     Link encap:Ethernet\n"
                                             "          inet addr:10.9.9.9  Mask:255.0.0.0\n"),
              "192.168.0.10");
}

TEST_F(IfconfigTest, BlockLinesBeforeAnyHeaderAreSkipped) {
    EXPECT_EQ(Address(" inet addr:1.1.1.1 \n\neth1 y\n"), "unchanged");
}

TEST_F(IfconfigTest, AnEmptyNameMatchesEveryLine) {
    EXPECT_EQ(Address(kOutput, ""), "127.0.0.1");
}

TEST_F(IfconfigTest, ANameWithoutANulEndsAtItsField) {
    EXPECT_EQ(Address("eth0eth0eth0eth0 x\n inet addr:1.1.1.1\n", "eth0eth0eth0eth0"), "1.1.1.1");
}

TEST_F(IfconfigTest, ALongValueIsCutToTheDataArea) {
    shell.Prints("ifconfig", {"eth0 inet addr:" + std::string(10 * 1024, '1') + "\n"});
    struct {
        char out[VELK_DATA_SIZE] = {};
        char behind[16] = "behind";
    } area;
    EXPECT_EQ(GetIpAddress(MakeRequest(VELK_GET, 104, "eth0"), area.out), 0);
    EXPECT_EQ(std::string(area.out), std::string(511, '1'));
    EXPECT_STREQ(area.behind, "behind");
}

TEST_F(IfconfigTest, RandomBytesAreScannedWithinTheirBounds) {
    unsigned seed = 7;
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (int i = 0; i < 200; ++i) {
            seed = seed * 1103515245 + 12345;
            const unsigned pick = seed >> 16;
            static const std::string pieces[] = {"\neth0", "\n ", "inet addr:", "\n", " "};
            text += pick % 4 == 0 ? pieces[pick / 4 % 5] : std::string(1, static_cast<char>(pick));
        }
        Address(text);
    }
}

TEST_F(IfconfigTest, NullArgumentsAreRefused) {
    char out[VELK_DATA_SIZE] = "";
    const _velk_request request = MakeRequest(VELK_GET, 104, "eth0");
    EXPECT_EQ(GetNetAddress(request, nullptr, out), -4);
    EXPECT_EQ(GetNetAddress(request, "inet addr:", nullptr), -4);
    EXPECT_EQ(GetIpAddress(request, nullptr), -4);
    EXPECT_EQ(GetSubNetMask(request, nullptr), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(IfconfigTest, AShellThatCannotBeRunIsAFailure) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIpAddress(MakeRequest(VELK_GET, 104, "eth0"), out), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=11:Resource temporarily unavailable"));
    EXPECT_STREQ(out, "unchanged");
}

TEST_F(IfconfigTest, AMissingResultFileIsAFailure) {
    shell.LeavesNoFile("ifconfig");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIpAddress(MakeRequest(VELK_GET, 104, "eth0"), out), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ifstream"));
    EXPECT_THAT(libc().Commands(), ElementsAre("ifconfig > /var/tmp/get_result"));
}

}  // namespace
