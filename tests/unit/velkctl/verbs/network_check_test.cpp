// Conflicts of an address, a mask or a gateway with the configuration.
#include "velkctl/verbs/network_check.h"

#include <string>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::Catalogue;
using velkctl::FindSetting;
using velkctl::Setting;

constexpr char kInterfaces[] = "/etc/network/interfaces";
constexpr char kStatic[] =
    "iface eth0 inet static\n"
    "address 192.168.0.10\n"
    "netmask 255.255.255.0\n"
    "gateway 192.168.0.1\n";

class NetworkCheckTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfaces, kStatic);
    }
    static std::string Problem(const std::string& name, const std::string& value) {
        const Setting setting = *FindSetting(name);
        velkctl::Data data{};
        (void)value.copy(data.data(), data.size());
        velkctl::Report report(velkctl::Report::Form::kText);
        const auto problem = NetworkProblem(setting, data, velkctl::Device({}, report));
        return problem ? OneLine(*problem) : "";
    }
};

TEST_F(NetworkCheckTest, AFittingValueIsNoProblem) {
    EXPECT_EQ(Problem("eth0.address", "192.168.0.11"), "");
    EXPECT_EQ(Problem("eth0.address", "10.0.0.7"), "");
    EXPECT_EQ(Problem("eth0.netmask", "255.255.0.0"), "");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.0.254"), "");
    EXPECT_EQ(Problem("eth0.gateway", ""), "");
}

TEST_F(NetworkCheckTest, TheGatewayHasToBeInTheNetwork) {
    EXPECT_EQ(
        Problem("eth0.gateway", "10.0.0.1"),
        "eth0.gateway: 10.0.0.1 is outside the network of the interface; the network of the "
        "interface is 192.168.0.0/24; fix: give another value, or set the address and netmask "
        "first, or give --force");
}

TEST_F(NetworkCheckTest, TheGatewayIsNotTheInterfaceItself) {
    EXPECT_EQ(
        Problem("eth0.gateway", "192.168.0.10"),
        "eth0.gateway: 192.168.0.10 is the address of the interface itself; fix: give another "
        "value, or set the address and netmask first, or give --force");
    EXPECT_EQ(Problem("eth0.address", "192.168.0.1"),
              "eth0.address: 192.168.0.1 is the gateway of the interface; fix: give another value, "
              "or set the netmask or gateway first, or give --force");
}

TEST_F(NetworkCheckTest, TheFirstAndTheLastAddressAreNoHosts) {
    EXPECT_EQ(Problem("eth0.address", "10.0.0.0"),
              "eth0.address: 10.0.0.0 is the address of the network; the network of the interface "
              "is 10.0.0.0/24; fix: give another value, or set the netmask or gateway first, or "
              "give --force");
    EXPECT_EQ(Problem("eth0.address", "10.0.0.255"),
              "eth0.address: 10.0.0.255 is the broadcast address of the network; the network of "
              "the interface is 10.0.0.0/24; fix: give another value, or set the netmask or "
              "gateway first, or give --force");
    EXPECT_EQ(
        Problem("eth0.gateway", "192.168.0.0"),
        "eth0.gateway: 192.168.0.0 is the address of the network; the network of the "
        "interface is 192.168.0.0/24; fix: give another value, or set the address and netmask "
        "first, or give --force");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.0.255"),
              "eth0.gateway: 192.168.0.255 is the broadcast address of the network; the network of "
              "the interface is 192.168.0.0/24; fix: give another value, or set the address and "
              "netmask first, or give --force");
}

TEST_F(NetworkCheckTest, AMaskHasToSuitTheAddress) {
    EXPECT_EQ(Problem("eth0.netmask", "255.255.255.254"), "");
    EXPECT_EQ(Problem("eth0.netmask", "255.255.255.255"), "");
    WriteFile(kInterfaces, "iface eth0 inet static\naddress 192.168.0.64\n");
    EXPECT_EQ(Problem("eth0.netmask", "255.255.255.192"),
              "eth0.netmask: 255.255.255.192 does not fit the address of the interface; "
              "192.168.0.64 would be the address of the network 192.168.0.64/26; fix: give another "
              "value, or set the address first, or give --force");
    WriteFile(kInterfaces, "iface eth0 inet static\naddress 192.168.0.63\n");
    EXPECT_EQ(
        Problem("eth0.netmask", "255.255.255.192"),
        "eth0.netmask: 255.255.255.192 does not fit the address of the interface; "
        "192.168.0.63 would be the broadcast address of the network 192.168.0.0/26; fix: give "
        "another value, or set the address first, or give --force");
}

TEST_F(NetworkCheckTest, AMissingSettingIsNoConflict) {
    WriteFile(kInterfaces, "iface eth0 inet static\naddress 192.168.0.10\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.address", "10.0.0.0"), "");
    WriteFile(kInterfaces, "iface eth0 inet static\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.netmask", "255.0.0.0"), "");
    WriteFile(kInterfaces, "iface eth0 inet static\naddress 10.0.0.5\nnetmask 255.0.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.0.1"), "") << "a mask with a gap is none";
}

TEST_F(NetworkCheckTest, TheFileOfAnInterfaceWithDhcpIsNotCompared) {
    WriteFile(kInterfaces, "iface eth0 inet dhcp\naddress 192.168.0.10\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.address", "192.168.0.255"), "");
}

TEST_F(NetworkCheckTest, OnlyAddressesAreLookedAt) {
    EXPECT_EQ(Problem("eth0.dns", "192.168.0.255"), "");
    EXPECT_EQ(Problem("ntp-server", "192.168.0.10"), "");
}

}  // namespace
