// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_interfaces.h - the network interfaces that getifaddrs(3) reports to the code under test.
#ifndef TESTS_SUPPORT_FAKE_INTERFACES_H_
#define TESTS_SUPPORT_FAKE_INTERFACES_H_

#include <list>
#include <string>

#include <ifaddrs.h>
#include <netinet/in.h>

namespace testkit {

// During its lifetime getifaddrs(3) reports these interfaces and addresses, in the order of their
// addition. Otherwise it reports those of the machine.
class FakeInterfaces {
  public:
    FakeInterfaces();
    ~FakeInterfaces();
    FakeInterfaces(const FakeInterfaces&) = delete;
    FakeInterfaces& operator=(const FakeInterfaces&) = delete;

    // Adds an interface without an address, like the first entries of the list.
    void AddInterface(const std::string& name, unsigned flags);
    // Adds an interface with an address. `netmask` may be null.
    void AddAddress(const std::string& label, unsigned flags, const char* address,
                    const char* netmask);
    void AddIpv6(const std::string& name, unsigned flags);

    ifaddrs* first() { return entries_.empty() ? nullptr : &entries_.front(); }

  private:
    sockaddr* MakeAddress(const char* text);
    void Add(const std::string& name, unsigned flags, sockaddr* address, sockaddr* netmask);

    std::list<std::string> names_;
    std::list<sockaddr_in> addresses_;
    std::list<ifaddrs> entries_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_FAKE_INTERFACES_H_
