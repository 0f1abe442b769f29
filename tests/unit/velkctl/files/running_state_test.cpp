// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The gateway and the DHCP client that run, as the kernel shows them.
#include <ctime>
#include <optional>
#include <string>

#include "support/device_test.h"
#include "support/machine.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/running_gateway.h"

namespace {

using velkctl::GatewayIn;
using velkctl::IsDhcpClientFor;
using velkctl::LeaseFileOf;
using velkctl::LeaseIn;
using velkctl::RunningGateway;

TEST(GatewayIn, ReadsTheDefaultRouteOfTheInterface) {
    const std::string route = "eth0\t00000000\t" + testkit::RouteNumber("0100A8C0") + "\t0003\t0\n";
    EXPECT_EQ(GatewayIn(route, "eth0"), "192.168.0.1");
    EXPECT_EQ(GatewayIn(route, "eth1"), "");
    EXPECT_EQ(GatewayIn("eth0\t0000A8C0\t00000000\t0001\t0\n", "eth0"), "");
    EXPECT_EQ(GatewayIn("eth0\t00000000\n", "eth0"), "");
    EXPECT_EQ(GatewayIn("", "eth0"), "");
}

class RunningGatewayTest : public testkit::DeviceTest {};

TEST_F(RunningGatewayTest, IsEmptyWithoutARoute) {
    EXPECT_EQ(RunningGateway("eth9"), "");
}

TEST(IsDhcpClientFor, KnowsTheClientByNameAndInterface) {
    using namespace std::string_literals;
    EXPECT_TRUE(IsDhcpClientFor("dhclient\0-v\0eth0\0"s, "eth0"));
    EXPECT_TRUE(IsDhcpClientFor("/sbin/dhclient\0eth0"s, "eth0"));
    EXPECT_FALSE(IsDhcpClientFor("dhclient\0eth1\0"s, "eth0"));
    EXPECT_FALSE(IsDhcpClientFor("vi\0dhclient\0eth0\0"s, "eth0"));
    EXPECT_FALSE(IsDhcpClientFor("", "eth0"));
}

TEST(ReadDhcpClient, FindsNoneForAnUnknownInterface) {
    const velkctl::DhcpClient client = velkctl::ReadDhcpClient("eth9");
    EXPECT_FALSE(client.is_running);
    EXPECT_FALSE(client.is_lease_known);
    EXPECT_FALSE(client.lease);
}

TEST(LeaseFileOf, IsTheOneOfTheCommandLine) {
    using namespace std::string_literals;
    EXPECT_EQ(LeaseFileOf("dhclient\0-lf\0/run/leases\0eth0\0"s, "eth0"), "/run/leases");
    EXPECT_EQ(LeaseFileOf("dhclient\0eth0\0"s, "eth0"), "/var/lib/dhcp/dhclient.eth0.leases");
    EXPECT_EQ(LeaseFileOf("dhclient\0eth0\0-lf"s, "eth0"), "/var/lib/dhcp/dhclient.eth0.leases");
}

constexpr time_t kNoon = 1795348800;  // 2026-11-22 12:00:00 UTC

velkctl::Lines LeaseLines(const std::string& interface, const std::string& address,
                          const std::string& expiry) {
    return {"lease {\n",
            "  interface \"" + interface + "\";\n",
            "  fixed-address " + address + ";\n",
            "  option subnet-mask 255.255.255.0;\n",
            "  renew 0 2026/11/22 11:00:00;\n",
            "  expire " + expiry + ";\n",
            "}\n"};
}

std::string LeaseText(const velkctl::Lines& lines) {
    const std::optional<velkctl::Lease> lease = LeaseIn(lines, "eth0", kNoon);
    return lease ? lease->Text() : "none";
}

TEST(LeaseIn, ReadsAddressAndExpiry) {
    EXPECT_EQ(LeaseText(LeaseLines("eth0", "192.168.0.109", "0 2026/11/22 12:00:01")),
              "192.168.0.109 until 2026-11-22 12:00:01 UTC");
    EXPECT_EQ(LeaseText(LeaseLines("eth0", "192.168.0.109", "epoch 1795348801; # Sun")),
              "192.168.0.109 until 2026-11-22 12:00:01 UTC");
    EXPECT_EQ(LeaseText(LeaseLines("eth0", "192.168.0.109", "never")), "192.168.0.109 for ever");
}

TEST(LeaseIn, IgnoresExpiredLeasesAndThoseOfAnotherInterface) {
    EXPECT_EQ(LeaseText({}), "none");
    EXPECT_EQ(LeaseText(LeaseLines("eth0", "192.168.0.109", "0 2026/11/22 12:00:00")), "none");
    EXPECT_EQ(LeaseText(LeaseLines("eth1", "192.168.0.109", "never")), "none");
}

TEST(LeaseIn, TakesTheLastLease) {
    velkctl::Lines lines = LeaseLines("eth0", "192.168.0.109", "never");
    for (const std::string& line : LeaseLines("eth0", "10.0.0.9", "0 2026/11/23 12:00:00")) {
        lines.push_back(line);
    }
    EXPECT_EQ(LeaseText(lines), "10.0.0.9 until 2026-11-23 12:00:00 UTC");
}

}  // namespace
