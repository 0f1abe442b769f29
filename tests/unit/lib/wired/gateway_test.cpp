// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <net/if.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/machine.h"
#include "support/paths.h"
#include "unit/lib/wired/named.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Named;
using testkit::RouteNumber;

constexpr char kTable[] = "/var/tmp/route";
const std::string kHeader =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

// One line of the routing table.
std::string Route(const std::string& interface, const std::string& destination,
                  const std::string& gateway) {
    return interface + "\t" + destination + "\t" + RouteNumber(gateway) +
           "\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";
}

class GatewayTest : public testkit::DeviceTest {
  protected:
    std::string GetFrom(const std::string& table, const std::string& name = "eth0") {
        testkit::WriteFile(kTable, table);
        libc().Redirect(testkit::kRoutingTable, kTable);
        ifreq ifr = Named(name);
        char out[VELK_DATA_SIZE] = "unchanged";
        EXPECT_EQ(GetDefGateway(-1, ifr, 0, out), 0);
        return out;
    }
    int SetWith(const std::string& table, const std::string& value) {
        testkit::WriteFile(kTable, table);
        libc().Redirect(testkit::kRoutingTable, kTable);
        ifreq ifr = Named("eth0");
        return SetDefGateway(-1, ifr, 0, value.c_str());
    }
    testkit::FakeShell shell;
};

TEST_F(GatewayTest, ReadsTheDefaultRoute) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth0", "00000000", "0100A8C0") +
                      Route("eth0", "0000A8C0", "00000000")),
              "192.168.0.1");
}

TEST_F(GatewayTest, TheFirstOfTwoDefaultRoutesCounts) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth0", "00000000", "0100A8C0") +
                      Route("eth0", "00000000", "FE00000A")),
              "192.168.0.1");
}

TEST_F(GatewayTest, RoutesOfOtherInterfacesDoNotCount) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth1", "00000000", "0100A8C0") +
                      Route("eth0", "00000000", "FE00000A")),
              "10.0.0.254");
}

TEST_F(GatewayTest, TheNameMustBeginTheLine) {
    EXPECT_EQ(GetFrom(kHeader + Route("veth0", "00000000", "0100A8C0")), "unchanged");
    EXPECT_EQ(GetFrom(kHeader + " " + Route("eth0", "00000000", "0100A8C0")), "unchanged");
}

TEST_F(GatewayTest, RoutesToNetworksDoNotCount) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth0", "0000A8C0", "0100A8C0")), "unchanged");
    EXPECT_EQ(GetFrom(kHeader + Route("eth0", "000000000", "0100A8C0")), "unchanged");
}

TEST_F(GatewayTest, FlagsMetricAndMaskDoNotMatter) {
    EXPECT_EQ(
        GetFrom(kHeader + "eth0\t00000000\t" + RouteNumber("0100A8C0") +
                "\t0000\t0\t0\t200\t00FFFFFF\t0\t0\t0\n" + Route("eth0", "00000000", "FE00000A")),
        "192.168.0.1");
}

TEST_F(GatewayTest, AnAliasCountsForItsInterface) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth0:1", "00000000", "0100A8C0") +
                      Route("eth0", "00000000", "FE00000A")),
              "192.168.0.1");
}

TEST_F(GatewayTest, AnInterfaceDoesNotCountForItsAlias) {
    EXPECT_EQ(GetFrom(kHeader + Route("eth0", "00000000", "0100A8C0"), "eth0:1"), "unchanged");
}

TEST_F(GatewayTest, WithoutADefaultRouteNothingIsWritten) {
    EXPECT_EQ(GetFrom(kHeader), "unchanged");
    EXPECT_EQ(GetFrom(""), "unchanged");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(GatewayTest, LinesThatAreNoRoutesAreSkipped) {
    EXPECT_EQ(GetFrom("eth0\neth0\t00000000\neth0\t00000000\tzz\neth0\t00000000\t123456789\n" +
                      std::string("eth0\0\t00000000\t01010101\n", 24) +
                      Route("eth0", "00000000", "FE00000A")),
              "10.0.0.254");
    EXPECT_EQ(GetFrom("eth0\t00000000\t" + std::string(10 * 1024, '0')), "0.0.0.0");
}

TEST_F(GatewayTest, AGatewayMayBeginWith0x) {
    EXPECT_EQ(GetFrom(Route("eth0", "00000000", "0x0100A8C0")), "192.168.0.1");
    EXPECT_EQ(GetFrom(Route("eth0", "00000000", "0XFE00000A")), "10.0.0.254");
    EXPECT_EQ(GetFrom(Route("eth0", "00000000", "0x123456789")), "unchanged");
}

TEST_F(GatewayTest, ANameWithoutANulEndsAtItsField) {
    EXPECT_EQ(GetFrom(Route("eth0eth0eth0eth0", "00000000", "0100A8C0"), "eth0eth0eth0eth0"),
              "192.168.0.1");
}

TEST_F(GatewayTest, ATableThatCannotBeReadIsLogged) {
    libc().Redirect(testkit::kRoutingTable, "/var/tmp/missing");
    ifreq ifr = Named("eth0");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetDefGateway(-1, ifr, 0, out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Logs(), ElementsAre("DelRoutingTable ifs"));
}

TEST_F(GatewayTest, NullBuffersAreRefused) {
    ifreq ifr = Named("eth0");
    EXPECT_EQ(GetDefGateway(-1, ifr, 0, nullptr), -4);
    EXPECT_EQ(SetDefGateway(-1, ifr, 0, nullptr), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_TRUE(libc().Events(Call::kOpen).empty());
}

TEST_F(GatewayTest, ASetDeletesTheOldRouteAndAddsTheNew) {
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0"), "192.168.0.254"), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo route del default gw 192.168.0.1",
                                               "sudo route add default gw 192.168.0.254"));
}

TEST_F(GatewayTest, OnlyTheFirstOfTwoDefaultRoutesIsDeleted) {
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0") +
                          Route("eth0", "00000000", "FE00000A"),
                      "10.0.0.1"),
              0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo route del default gw 192.168.0.1",
                                               "sudo route add default gw 10.0.0.1"));
}

TEST_F(GatewayTest, WithoutADefaultRouteTheDeletionNamesNone) {
    EXPECT_EQ(SetWith(kHeader, "10.0.0.1"), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo route del default gw ", "sudo route add default gw 10.0.0.1"));
}

TEST_F(GatewayTest, ATableThatCannotBeReadSkipsTheDeletion) {
    libc().Redirect(testkit::kRoutingTable, "/var/tmp/missing");
    ifreq ifr = Named("eth0");
    EXPECT_EQ(SetDefGateway(-1, ifr, 0, "10.0.0.1"), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo route add default gw 10.0.0.1"));
    EXPECT_THAT(libc().Logs(), ElementsAre("DelRoutingTable ifs"));
}

TEST_F(GatewayTest, AFailedDeletionAddsNothing) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0"), "10.0.0.1"), -1);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo route del default gw 192.168.0.1"));
}

TEST_F(GatewayTest, AFailedAdditionIsAFailure) {
    libc().Script(Call::kSystem, {testkit::Return(0), Fail(EAGAIN)});
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0"), "10.0.0.1"), -1);
}

TEST_F(GatewayTest, AToolThatFailsIsNotNoticed) {
    libc().Script(Call::kSystem, {testkit::Return(256), testkit::Return(256)});
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0"), "10.0.0.1"), 0);
}

TEST_F(GatewayTest, AValueIsPassedUnchanged) {
    EXPECT_EQ(SetWith(kHeader, "no address"), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo route del default gw ", "sudo route add default gw no address"));
}

TEST_F(GatewayTest, AValueThatDoesNotFitIsRefusedBeforeTheOldRouteIsGone) {
    EXPECT_EQ(SetWith(kHeader + Route("eth0", "00000000", "0100A8C0"), std::string(300, '1')), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), ElementsAre("command line of 326 bytes does not fit"));
}

// The kernel's own routing table, in the private network namespace.
class KernelGatewayTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(system("ip link add eth0 type veth peer name r0 && "
                         "ip link add eth00 type veth peer name r1 && "
                         "ip addr add 192.168.0.10/24 dev eth0 && "
                         "ip addr add 10.0.0.10/24 dev eth00 && "
                         "ip link set eth0 up && ip link set r0 up && "
                         "ip link set eth00 up && ip link set r1 up"),
                  0);
    }
    void TearDown() override {
        (void)!system("ip link del eth0; ip link del eth00");
        DeviceTest::TearDown();
    }
    static std::string Gateway(const std::string& name) {
        ifreq ifr = Named(name);
        char out[VELK_DATA_SIZE] = "unchanged";
        EXPECT_EQ(GetDefGateway(-1, ifr, 0, out), 0);
        return out;
    }
};

TEST_F(KernelGatewayTest, ReadsItsDefaultRoutes) {
    EXPECT_EQ(Gateway("eth0"), "unchanged");
    ASSERT_EQ(system("ip route add default via 192.168.0.1 dev eth0 metric 10"), 0);
    EXPECT_EQ(Gateway("eth0"), "192.168.0.1");
    ASSERT_EQ(system("ip route add default via 192.168.0.2 dev eth0 metric 20"), 0);
    EXPECT_EQ(Gateway("eth0"), "192.168.0.1") << "the first in table order";
}

TEST_F(KernelGatewayTest, ARouteOfEth00CountsForEth0Too) {
    ASSERT_EQ(system("ip route add default via 10.0.0.1 dev eth00"), 0);
    EXPECT_EQ(Gateway("eth00"), "10.0.0.1");
    EXPECT_EQ(Gateway("eth0"), "10.0.0.1");
    EXPECT_EQ(Gateway("eth1"), "unchanged");
}

}  // namespace
