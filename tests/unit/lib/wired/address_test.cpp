// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/machine.h"
#include "unit/lib/wired/named.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Data;
using testkit::Fail;
using testkit::MakeRequest;
using testkit::Named;

// A real interface named eth0 in the private network namespace.
class KernelAddressTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        socket_.Reset(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        ASSERT_EQ(system("ip link add eth0 address 00:80:92:1a:2b:3c type veth peer name r0"), 0);
    }
    void TearDown() override {
        (void)!system("ip link del eth0");
        socket_.Reset();
        DeviceTest::TearDown();
    }
    int fd() const { return socket_.get(); }

  private:
    velk::UniqueFd socket_;
};

TEST_F(KernelAddressTest, TheMacAddressIs12UpperCaseDigits) {
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth0"), 0);
    EXPECT_EQ(Data(response), std::string("0080921A2B3C") + std::string(500, '\0'));
    EXPECT_THAT(libc().Logs(), IsEmpty());
    EXPECT_EQ(libc().Events(Call::kIoctl)[0].number, 0x8927);
}

TEST_F(KernelAddressTest, OnlyTheTextIsWritten) {
    ifreq ifr = Named("eth0");
    char out[32];
    memset(out, 'x', sizeof(out));
    EXPECT_EQ(GetMacAddress(fd(), ifr, SIOCGIFHWADDR, out), 0);
    EXPECT_EQ(std::string(out, 32), std::string("0080921A2B3C\0", 13) + std::string(19, 'x'));
}

TEST_F(KernelAddressTest, AMissingInterfaceHasAnEmptyMacAddress) {
    ASSERT_EQ(system("ip link del eth0"), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth0"), 0);
    EXPECT_EQ(Data(response), std::string(512, '\0'));
    EXPECT_THAT(libc().Logs(), ElementsAre("ioctl errno=19:No such device"));
}

TEST_F(KernelAddressTest, AFailedMacIoctlLeavesTheBufferAlone) {
    ifreq ifr = Named("eth9");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetMacAddress(fd(), ifr, SIOCGIFHWADDR, out), 0);
    EXPECT_STREQ(out, "unchanged");
}

TEST_F(KernelAddressTest, AddressAndMaskAreDottedQuads) {
    ASSERT_EQ(system("ip addr add 192.168.0.10/20 dev eth0"), 0);
    ifreq ifr = Named("eth0");
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIpAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_STREQ(out, "192.168.0.10");
    ifr = Named("eth0");
    EXPECT_EQ(GetSubNetMask(fd(), ifr, SIOCGIFNETMASK, out), 0);
    EXPECT_STREQ(out, "255.255.240.0");
    ifr = Named("eth0");
    EXPECT_EQ(GetNetAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_STREQ(out, "192.168.0.10");
}

TEST_F(KernelAddressTest, AddressAndMaskAreReadThroughTheIoctlTableToo) {
    ASSERT_EQ(system("ip addr add 10.1.2.3/8 dev eth0"), 0);
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 104, "eth0"), out), 0);
    EXPECT_STREQ(out, "10.1.2.3");
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 105, "eth0"), out), 0);
    EXPECT_STREQ(out, "255.0.0.0");
}

TEST_F(KernelAddressTest, AnInterfaceWithoutAnAddressHasAnEmptyOne) {
    ifreq ifr = Named("eth0");
    char out[VELK_DATA_SIZE] = "old";
    EXPECT_EQ(GetIpAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_STREQ(out, "");
    EXPECT_THAT(libc().Logs(), ElementsAre("ioctl " + testkit::ErrnoText(EADDRNOTAVAIL) +
                                           ":Cannot assign requested address"));
}

TEST_F(KernelAddressTest, AnAddressCanBeSetByIoctl) {
    ifreq ifr = Named("eth0");
    EXPECT_EQ(SetNetAddress(fd(), ifr, SIOCSIFADDR, "10.0.0.5"), 0);
    char out[VELK_DATA_SIZE] = "";
    ifr = Named("eth0");
    EXPECT_EQ(GetIpAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_STREQ(out, "10.0.0.5");
}

TEST_F(KernelAddressTest, ATextThatIsNoAddressIsNotChecked) {
    ASSERT_EQ(system("ip addr add 10.1.2.3/8 dev eth0"), 0);
    ifreq ifr = Named("eth0");
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIpAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_EQ(SetNetAddress(fd(), ifr, SIOCSIFADDR, "no address"), 0);
    EXPECT_EQ(GetIpAddress(fd(), ifr, SIOCGIFADDR, out), 0);
    EXPECT_STREQ(out, "10.1.2.3") << "the kernel got the address that the record held";
}

TEST_F(KernelAddressTest, ARefusedSetIsAFailure) {
    ifreq ifr = Named("eth9");
    EXPECT_EQ(SetNetAddress(fd(), ifr, SIOCSIFADDR, "10.0.0.5"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("ioctl errno=19:No such device"));
}

class AddressTest : public testkit::DeviceTest {
  protected:
    ifreq ifr = Named("eth0");
    testkit::FakeShell shell;
};

TEST_F(AddressTest, NullBuffersAreRefused) {
    EXPECT_EQ(GetMacAddress(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(GetNetAddress(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(GetIpAddress(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(GetSubNetMask(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(SetNetAddress(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(SetSubNetMask(-1, ifr, 0, nullptr), -4);
    EXPECT_TRUE(libc().Events(Call::kIoctl).empty());
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(AddressTest, AddressAndMaskAreSetByTheseLines) {
    EXPECT_EQ(SetIpAddress(-1, ifr, SIOCSIFADDR, "10.0.0.5"), 0);
    EXPECT_EQ(SetSubNetMask(-1, ifr, SIOCSIFNETMASK, "255.255.255.0"), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ifconfig eth0 10.0.0.5",
                                               "sudo ifconfig eth0 netmask 255.255.255.0"));
}

TEST_F(AddressTest, ValuesArePassedUnchanged) {
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, "no address"), 0);
    EXPECT_EQ(SetSubNetMask(-1, ifr, 0, ""), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ifconfig eth0 no address", "sudo ifconfig eth0 netmask "));
}

TEST_F(AddressTest, ValuesThatDoNotFitAreRefused) {
    const std::string fits(255 - strlen("sudo ifconfig eth0 "), '1');
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, fits.c_str()), 0);
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, (fits + "1").c_str()), -4);
    EXPECT_EQ(SetSubNetMask(-1, ifr, 0, std::string(500, '1').c_str()), -4);
    EXPECT_EQ(libc().Commands().size(), 1U);
    EXPECT_THAT(libc().Logs(), ElementsAre("command line of 256 bytes does not fit",
                                           "command line of 527 bytes does not fit"));
}

TEST_F(AddressTest, ANameWithoutANulEndsAtItsField) {
    memset(ifr.ifr_name, 'e', sizeof(ifr.ifr_name));
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, "1.2.3.4"), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ifconfig eeeeeeeeeeeeeeee 1.2.3.4"));
}

TEST_F(AddressTest, AToolThatFailsIsNotNoticed) {
    libc().Script(Call::kSystem, {testkit::Return(256), testkit::Return(256)});
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, "10.0.0.5"), 0);
    EXPECT_EQ(SetSubNetMask(-1, ifr, 0, "255.0.0.0"), 0);
}

TEST_F(AddressTest, AShellThatCannotBeRunIsAFailure) {
    libc().Script(Call::kSystem, {Fail(EAGAIN), Fail(EAGAIN)});
    EXPECT_EQ(SetIpAddress(-1, ifr, 0, "10.0.0.5"), -1);
    EXPECT_EQ(SetSubNetMask(-1, ifr, 0, "255.0.0.0"), -1);
}

}  // namespace
