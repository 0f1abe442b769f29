// The gateway and the DHCP client that run, as the kernel shows them.
#include <string>

#include "support/device_test.h"
#include "velkctl/call/dhcp_client.h"
#include "velkctl/call/running_gateway.h"

namespace {

using velkctl::GatewayIn;
using velkctl::IsDhcpClientFor;
using velkctl::RunningGateway;

TEST(GatewayIn, ReadsTheDefaultRouteOfTheInterface) {
    EXPECT_EQ(GatewayIn("eth0\t00000000\t0100A8C0\t0003\t0\n", "eth0"), "192.168.0.1");
    EXPECT_EQ(GatewayIn("eth0\t00000000\t0100A8C0\t0003\t0\n", "eth1"), "");
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

TEST(IsDhcpClientRunning, IsFalseWithoutOne) {
    EXPECT_FALSE(velkctl::IsDhcpClientRunning("eth9"));
}

}  // namespace
