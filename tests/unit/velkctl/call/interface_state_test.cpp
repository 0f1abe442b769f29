// The state of a network interface, from lists as getifaddrs(3) makes them.
#include "velkctl/call/interface_state.h"

#include <list>
#include <string>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>

namespace {

using velkctl::FindInterfaceState;
using velkctl::InterfaceState;
using velkctl::IsLinkLocal;
using velkctl::ReadInterfaceState;

constexpr unsigned kUp = IFF_UP | IFF_RUNNING;

// A list of interfaces and addresses in the order of their addition.
class InterfaceList {
  public:
    // An interface without an address, as the first entries of the list are.
    void AddInterface(const std::string& name, unsigned flags) {
        Add(name, flags, nullptr, nullptr);
    }
    void AddAddress(const std::string& label, unsigned flags, const char* address,
                    const char* netmask) {
        Add(label, flags, MakeAddress(address),
            netmask == nullptr ? nullptr : MakeAddress(netmask));
    }
    void AddIpv6(const std::string& name, unsigned flags) {
        sockaddr* address = MakeAddress("0.0.0.0");
        address->sa_family = AF_INET6;
        Add(name, flags, address, nullptr);
    }
    const ifaddrs* first() const { return entries_.empty() ? nullptr : &entries_.front(); }

  private:
    sockaddr* MakeAddress(const char* text) {
        sockaddr_in& address = addresses_.emplace_back();
        address.sin_family = AF_INET;
        (void)inet_pton(AF_INET, text, &address.sin_addr);
        return reinterpret_cast<sockaddr*>(&address);
    }
    void Add(const std::string& name, unsigned flags, sockaddr* address, sockaddr* netmask) {
        ifaddrs* last = entries_.empty() ? nullptr : &entries_.back();
        ifaddrs& entry = entries_.emplace_back();
        entry.ifa_name = names_.emplace_back(name).data();
        entry.ifa_flags = flags;
        entry.ifa_addr = address;
        entry.ifa_netmask = netmask;
        if (last != nullptr) {
            last->ifa_next = &entry;
        }
    }

    std::list<std::string> names_;
    std::list<sockaddr_in> addresses_;
    std::list<ifaddrs> entries_;
};

TEST(InterfaceStateTest, AnInterfaceThatIsNotListedDoesNotExist) {
    InterfaceList list;
    EXPECT_FALSE(FindInterfaceState(list.first(), "eth1").exists);
    list.AddInterface("eth0", kUp);
    list.AddAddress("eth0", kUp, "192.168.0.10", "255.255.255.0");
    const InterfaceState state = FindInterfaceState(list.first(), "eth1");
    EXPECT_FALSE(state.exists);
    EXPECT_FALSE(state.is_up);
    EXPECT_FALSE(state.has_address());
}

TEST(InterfaceStateTest, AnInterfaceHasItsAddressAndNetmask) {
    InterfaceList list;
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
    InterfaceList list;
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
    InterfaceList list;
    list.AddInterface("eth0", IFF_RUNNING);
    const InterfaceState state = FindInterfaceState(list.first(), "eth0");
    EXPECT_TRUE(state.exists);
    EXPECT_FALSE(state.is_up);
    EXPECT_FALSE(state.has_link);
}

TEST(InterfaceStateTest, TheAddressOfAnAliasComesLast) {
    InterfaceList list;
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
