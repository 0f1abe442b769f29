// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Conflicts of an address, a mask or a gateway with the configuration.
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <net/if.h>

#include "support/device_test.h"
#include "support/fake_interfaces.h"
#include "support/paths.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/doctor/value_checks.h"

namespace {

using testkit::kInterfacesFile;
using testkit::WriteFile;
using velkctl::FindSetting;

constexpr char kStatic[] =
    "iface eth0 inet static\n"
    "address 192.168.0.10\n"
    "netmask 255.255.255.0\n"
    "gateway 192.168.0.1\n";

class NetworkCheckTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfacesFile, kStatic);
    }
    static std::string Problem(const std::string& name, const std::string& value) {
        velkctl::SettingChange change{*FindSetting(name)};
        (void)value.copy(change.value.data(), change.value.size());
        velkctl::Report report(velkctl::Report::Form::kText);
        const velkctl::Device device({}, report);
        const auto problem = NetworkProblem(change, velkctl::PlannedValues(device, {&change, 1}));
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
    WriteFile(kInterfacesFile, "iface eth0 inet static\naddress 192.168.0.64\n");
    EXPECT_EQ(Problem("eth0.netmask", "255.255.255.192"),
              "eth0.netmask: 255.255.255.192 does not fit the address of the interface; "
              "192.168.0.64 would be the address of the network 192.168.0.64/26; fix: give another "
              "value, or set the address first, or give --force");
    WriteFile(kInterfacesFile, "iface eth0 inet static\naddress 192.168.0.63\n");
    EXPECT_EQ(
        Problem("eth0.netmask", "255.255.255.192"),
        "eth0.netmask: 255.255.255.192 does not fit the address of the interface; "
        "192.168.0.63 would be the broadcast address of the network 192.168.0.0/26; fix: give "
        "another value, or set the address first, or give --force");
}

// In a network of four addresses the first and the last are no hosts; in one of two, all are.
TEST_F(NetworkCheckTest, TheSmallestNetworkWithSpecialAddressesHasFour) {
    const auto fits = [](const std::string& address, const std::string& mask) {
        WriteFile(kInterfacesFile, "iface eth0 inet static\naddress " + address + "\n");
        return Problem("eth0.netmask", mask) == "";
    };
    EXPECT_FALSE(fits("192.168.0.4", "255.255.255.252"));
    EXPECT_TRUE(fits("192.168.0.5", "255.255.255.252"));
    EXPECT_TRUE(fits("192.168.0.6", "255.255.255.252"));
    EXPECT_FALSE(fits("192.168.0.7", "255.255.255.252"));
    EXPECT_TRUE(fits("192.168.0.4", "255.255.255.254"));
    EXPECT_TRUE(fits("192.168.0.5", "255.255.255.254"));
    EXPECT_FALSE(fits("128.0.0.0", "128.0.0.0")) << "the largest network";
    EXPECT_TRUE(fits("128.0.0.1", "128.0.0.0"));
}

TEST_F(NetworkCheckTest, TheNetworkOfTheGatewayEndsWithItsLastAddress) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\naddress 192.168.4.10\nnetmask 255.255.252.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.4.1"), "");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.7.254"), "");
    EXPECT_NE(Problem("eth0.gateway", "192.168.7.255"), "");
    EXPECT_NE(Problem("eth0.gateway", "192.168.8.1"), "");
    EXPECT_NE(Problem("eth0.gateway", "192.168.3.254"), "");
}

TEST_F(NetworkCheckTest, AMissingSettingIsNoConflict) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\naddress 192.168.0.10\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.address", "10.0.0.0"), "");
    WriteFile(kInterfacesFile, "iface eth0 inet static\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.netmask", "255.0.0.0"), "");
    WriteFile(kInterfacesFile, "iface eth0 inet static\naddress 10.0.0.5\nnetmask 255.0.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "192.168.0.1"), "") << "a mask with a gap is none";
}

TEST_F(NetworkCheckTest, TheFileOfAnInterfaceWithDhcpIsNotCompared) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet dhcp\naddress 192.168.0.10\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Problem("eth0.gateway", "10.0.0.1"), "");
    EXPECT_EQ(Problem("eth0.address", "192.168.0.255"), "");
}

TEST_F(NetworkCheckTest, OnlyAddressesAreLookedAt) {
    EXPECT_EQ(Problem("eth0.dns", "192.168.0.255"), "");
    EXPECT_EQ(Problem("ntp-server", "192.168.0.10"), "");
}

TEST_F(NetworkCheckTest, OneAddressForTwoInterfacesIsRefusedInOneSet) {
    WriteFile(kInterfacesFile, std::string(kStatic) + "iface eth1 inet static\n");
    velkctl::Report report(velkctl::Report::Form::kText);
    const velkctl::Device device({}, report);
    std::array<velkctl::SettingChange, 2> changes{
        {{*FindSetting("eth0.address")}, {*FindSetting("eth1.address")}}};
    for (velkctl::SettingChange& change : changes) {
        (void)std::string_view("10.0.0.5").copy(change.value.data(), change.value.size());
    }
    const velkctl::PlannedValues planned(device, changes);
    EXPECT_FALSE(NetworkProblem(changes[0], planned));
    const auto problem = NetworkProblem(changes[1], planned);
    EXPECT_EQ(problem ? OneLine(*problem) : "",
              "eth1.address: 10.0.0.5 is also the new value of eth0.address; fix: give each "
              "interface an address of its own, or give --force");
    const auto of_apply = NetworkProblem(changes[1], planned, velkctl::WayOut::kOfApply);
    EXPECT_EQ(of_apply ? of_apply->remedy : "", "give each interface an address of its own");
    EXPECT_EQ(Problem("eth1.address", "192.168.0.10"), "") << "a set of one is noted";
}

// Returns the problem of the last of these values, which one call changes.
std::string ProblemOfTogether(const std::vector<std::pair<const char*, const char*>>& values,
                              velkctl::WayOut way_out = velkctl::WayOut::kOfSet) {
    std::vector<velkctl::SettingChange> changes;
    for (const auto& [name, value] : values) {
        changes.push_back({*FindSetting(name)});
        (void)std::string_view(value).copy(changes.back().value.data(), velkctl::Data{}.size());
    }
    velkctl::Report report(velkctl::Report::Form::kText);
    const velkctl::Device device({}, report);
    const auto problem =
        NetworkProblem(changes.back(), velkctl::PlannedValues(device, changes), way_out);
    return problem ? OneLine(*problem) : "";
}

TEST_F(NetworkCheckTest, OneAddressForTwoIsNoConflictWhereOneHasDhcp) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\niface eth1 inet static\n");
    EXPECT_EQ(ProblemOfTogether({{"eth0.address", "10.0.0.5"}, {"eth1.address", "10.0.0.5"}}), "");
    WriteFile(kInterfacesFile, std::string(kStatic) + "iface eth1 inet static\n");
    EXPECT_NE(ProblemOfTogether({{"eth0.address", "10.0.0.5"}, {"eth1.address", "10.0.0.5"}}), "");
    EXPECT_EQ(ProblemOfTogether({{"eth0.address", "10.0.0.5"}, {"eth1.address", "10.0.0.6"}}), "");
    EXPECT_EQ(ProblemOfTogether({{"eth0.address", "10.0.0.5"}, {"eth1.gateway", "10.0.0.5"}}), "");
    EXPECT_EQ(ProblemOfTogether({{"eth1.address", "10.0.0.5"}, {"eth0.address", "10.0.0.5"}}), "")
        << "it is reported once, of eth1";
}

TEST_F(NetworkCheckTest, AFixForADocumentNamesTheOtherValues) {
    EXPECT_EQ(ProblemOfTogether({{"eth0.gateway", "10.0.0.1"}}, velkctl::WayOut::kOfApply),
              "eth0.gateway: 10.0.0.1 is outside the network of the interface; the network of the "
              "interface is 192.168.0.0/24; fix: give another value, or give the address and "
              "netmask too");
}

class NetworkMismatchesTest : public testkit::DeviceTest {
  protected:
    static std::string Found() {
        velkctl::Report report(velkctl::Report::Form::kText);
        const velkctl::Device device({}, report);
        return FormatFindings(NetworkMismatches(velkctl::PlannedValues(device, {})));
    }
};

TEST_F(NetworkMismatchesTest, FittingAddressesAreNoFindings) {
    EXPECT_EQ(Found(), "") << "without the files";
    WriteFile(kInterfacesFile, std::string(kStatic) +
                                   "iface eth1 inet static\naddress 10.0.0.5\nnetmask 255.0.0.0\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 192.168.0.1\nnameserver foo\n");
    EXPECT_EQ(Found(), "");
}

TEST_F(NetworkMismatchesTest, AGatewayOutsideTheNetworkIsFound) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\naddress 10.0.0.5\nnetmask 255.255.255.0\n"
              "gateway 192.168.0.1\n");
    EXPECT_EQ(Found(),
              "problem: eth0.gateway is outside the network of the interface\n"
              "  /etc/network/interfaces:4: it is 192.168.0.1, and the network of the interface is "
              "10.0.0.0/24\n"
              "  fix: velkctl set eth0.gateway VALUE\n");
}

TEST_F(NetworkMismatchesTest, AnAddressThatNoHostCanHaveIsFound) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\naddress 10.0.0.255\nnetmask 255.255.255.0\n"
              "gateway 10.0.0.255\n");
    EXPECT_EQ(Found(),
              "problem: eth0.address is the broadcast address of the network\n"
              "  /etc/network/interfaces:2: it is 10.0.0.255, and the network of the interface is "
              "10.0.0.0/24\n"
              "  fix: velkctl set eth0.address VALUE\n"
              "problem: eth0.gateway is the address of the interface itself\n"
              "  /etc/network/interfaces:4: it is 10.0.0.255\n"
              "  fix: velkctl set eth0.gateway VALUE\n");
}

TEST_F(NetworkMismatchesTest, OneAddressOfTwoInterfacesIsFound) {
    WriteFile(
        kInterfacesFile,
        std::string(kStatic) + "iface eth1 inet static\naddress 192.168.0.10\nnetmask 255.0.0.0\n");
    EXPECT_EQ(Found(),
              "problem: eth1.address is also the address of eth0\n"
              "  /etc/network/interfaces:6: both are 192.168.0.10\n"
              "  fix: velkctl set eth1.address VALUE\n");
}

TEST_F(NetworkMismatchesTest, AMissingAddressOrMaskIsFound) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\naddress 10.0.0.5\n"
              "iface eth1 inet static\n"
              "iface lo inet loopback\n");
    EXPECT_EQ(Found(),
              "problem: eth0.netmask is missing\n"
              "  /etc/network/interfaces: eth0.method is static, and ifup needs it\n"
              "  fix: velkctl set eth0.netmask=NETMASK\n"
              "problem: eth1.address and eth1.netmask are missing\n"
              "  /etc/network/interfaces: eth1.method is static, and ifup needs them\n"
              "  fix: velkctl set eth1.address=ADDRESS eth1.netmask=NETMASK\n");
}

TEST_F(NetworkMismatchesTest, AnAddressThatTheLibraryDoesNotReadIsNotMissing) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet static\naddress\t10.0.0.5\nnetmask 255.0.0.0\n"
              "iface lo inet loopback\n");
    EXPECT_EQ(Found(), "");
}

TEST_F(NetworkMismatchesTest, AServerThatIsTheDeviceItselfIsFound) {
    WriteFile(kInterfacesFile, kStatic);
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 192.168.0.1\nnameserver 192.168.0.10\n");
    EXPECT_EQ(Found(),
              "warning: eth0.dns names the device itself\n"
              "  /etc/resolv.dnsmasq.conf:2: 192.168.0.10 is the address of eth0\n"
              "  fix: velkctl set eth0.dns VALUE\n");
}

TEST_F(NetworkMismatchesTest, AServerThatIsTheLeasedAddressIsFound) {
    testkit::FakeInterfaces present;
    present.AddAddress("eth1", IFF_UP, "10.0.0.7", "255.0.0.0");
    present.AddAddress("eth0", IFF_UP, "192.168.0.99", "255.255.255.0");
    WriteFile(kInterfacesFile, std::string(kStatic) + "iface eth1 inet dhcp\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 10.0.0.7\n");
    EXPECT_EQ(Found(),
              "warning: eth0.dns names the device itself\n"
              "  /etc/resolv.dnsmasq.conf:1: 10.0.0.7 is the address of eth1\n"
              "  fix: velkctl set eth0.dns VALUE\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 192.168.0.99\n");
    EXPECT_EQ(Found(), "") << "the address of a static interface is that of its file";
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 127.0.0.53\n");
    EXPECT_EQ(Found(),
              "warning: eth0.dns names the device itself\n"
              "  /etc/resolv.dnsmasq.conf:1: 127.0.0.53 is a loopback address\n"
              "  fix: velkctl set eth0.dns VALUE\n");
}

TEST_F(NetworkMismatchesTest, AnAddressOfOneStaticInterfaceIsItsOwn) {
    WriteFile(kInterfacesFile,
              "iface eth0 inet dhcp\n"
              "iface eth1 inet static\naddress 10.0.0.5\nnetmask 255.0.0.0\n");
    EXPECT_EQ(Found(), "");
    WriteFile(kInterfacesFile,
              std::string(kStatic) +
                  "iface eth1 inet static\nnetmask 255.0.0.0\niface lo inet loopback\n");
    EXPECT_EQ(Found(),
              "problem: eth1.address is missing\n"
              "  /etc/network/interfaces: eth1.method is static, and ifup needs it\n"
              "  fix: velkctl set eth1.address=ADDRESS\n");
}

TEST_F(NetworkMismatchesTest, AnInterfaceWithDhcpIsNotCompared) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\naddress 10.0.0.255\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Found(), "");
}

}  // namespace
