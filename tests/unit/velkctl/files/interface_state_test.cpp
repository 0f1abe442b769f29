// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The state of a network interface, from lists as getifaddrs(3) makes them.
#include "velkctl/files/interface_state.h"

#include <gtest/gtest.h>
#include <net/if.h>

#include "support/fake_interfaces.h"

namespace {

using velkctl::FindInterfaceState;
using velkctl::InterfaceState;
using velkctl::IsLinkLocal;
using velkctl::ReadInterfaceState;

constexpr unsigned kUp = IFF_UP | IFF_RUNNING;

TEST(InterfaceStateTest, AnInterfaceThatIsNotListedDoesNotExist) {
    testkit::FakeInterfaces list;
    EXPECT_FALSE(FindInterfaceState(list.first(), "eth1").exists);
    list.AddInterface("eth0", kUp);
    list.AddAddress("eth0", kUp, "192.168.0.10", "255.255.255.0");
    const InterfaceState state = FindInterfaceState(list.first(), "eth1");
    EXPECT_FALSE(state.exists);
    EXPECT_FALSE(state.is_up);
    EXPECT_FALSE(state.has_address());
}

TEST(InterfaceStateTest, AnInterfaceHasItsAddressAndNetmask) {
    testkit::FakeInterfaces list;
    list.AddInterface("lo", kUp);
    list.AddInterface("eth0", kUp);
    list.AddAddress("lo", kUp, "127.0.0.1", "255.0.0.0");
    list.AddAddress("eth0", kUp, "192.168.0.10", "255.255.255.0");
    list.AddAddress("eth0", kUp, "10.0.0.5", "255.0.0.0");
    const InterfaceState state = FindInterfaceState(list.first(), "eth0");
    EXPECT_TRUE(state.exists);
    EXPECT_TRUE(state.is_up);
    EXPECT_TRUE(state.has_link);
    EXPECT_EQ(state.address(), "192.168.0.10") << "the first one";
    EXPECT_EQ(state.addresses.front().netmask, "255.255.255.0");
    EXPECT_TRUE(state.Has("10.0.0.5"));
    EXPECT_FALSE(state.Has("127.0.0.1"));
}

TEST(InterfaceStateTest, AnInterfaceWithoutAnIpv4AddressHasNone) {
    testkit::FakeInterfaces list;
    list.AddInterface("eth0", IFF_UP);
    list.AddIpv6("eth0", IFF_UP);
    list.AddAddress("eth01", kUp, "10.0.0.5", "255.0.0.0");
    const InterfaceState state = FindInterfaceState(list.first(), "eth0");
    EXPECT_TRUE(state.is_up);
    EXPECT_FALSE(state.has_link);
    EXPECT_FALSE(state.has_address());
    EXPECT_EQ(state.address(), "");
}

TEST(InterfaceStateTest, AnInterfaceThatIsDownHasNoLink) {
    testkit::FakeInterfaces list;
    list.AddInterface("eth0", IFF_RUNNING);
    const InterfaceState state = FindInterfaceState(list.first(), "eth0");
    EXPECT_TRUE(state.exists);
    EXPECT_FALSE(state.is_up);
    EXPECT_FALSE(state.has_link);
}

TEST(InterfaceStateTest, TheAddressOfAnAliasComesLast) {
    testkit::FakeInterfaces list;
    list.AddInterface("eth0", kUp);
    list.AddIpv6("eth0:x", kUp);
    list.AddAddress("eth0:avahi", kUp, "169.254.7.1", nullptr);
    EXPECT_EQ(FindInterfaceState(list.first(), "eth0").address(), "169.254.7.1");
    EXPECT_EQ(FindInterfaceState(list.first(), "eth0").addresses.front().netmask, "");
    list.AddAddress("eth0", kUp, "192.168.0.109", "255.255.255.0");
    EXPECT_EQ(FindInterfaceState(list.first(), "eth0").address(), "192.168.0.109");
}

TEST(InterfaceStateTest, TheKernelIsAsked) {
    EXPECT_TRUE(ReadInterfaceState("lo").exists);
    EXPECT_FALSE(ReadInterfaceState("none").exists);
}

TEST(InterfaceStateTest, ALinkLocalAddressIsRecognised) {
    EXPECT_TRUE(IsLinkLocal("169.254.7.1"));
    EXPECT_FALSE(IsLinkLocal("169.25.4.1"));
    EXPECT_FALSE(IsLinkLocal(""));
}

}  // namespace
