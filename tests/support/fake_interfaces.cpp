// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_interfaces.cpp - the network interfaces that getifaddrs(3) reports to the code under test.
#include "support/fake_interfaces.h"

#include <arpa/inet.h>
#include <dlfcn.h>

namespace testkit {
namespace {

FakeInterfaces* current = nullptr;

}  // namespace

FakeInterfaces::FakeInterfaces() {
    current = this;
}

FakeInterfaces::~FakeInterfaces() {
    current = nullptr;
}

void FakeInterfaces::AddInterface(const std::string& name, unsigned flags) {
    Add(name, flags, nullptr, nullptr);
}

void FakeInterfaces::AddAddress(const std::string& label, unsigned flags, const char* address,
                                const char* netmask) {
    Add(label, flags, MakeAddress(address), netmask == nullptr ? nullptr : MakeAddress(netmask));
}

void FakeInterfaces::AddIpv6(const std::string& name, unsigned flags) {
    sockaddr* address = MakeAddress("0.0.0.0");
    address->sa_family = AF_INET6;
    Add(name, flags, address, nullptr);
}

sockaddr* FakeInterfaces::MakeAddress(const char* text) {
    sockaddr_in& address = addresses_.emplace_back();
    address.sin_family = AF_INET;
    (void)inet_pton(AF_INET, text, &address.sin_addr);
    return reinterpret_cast<sockaddr*>(&address);
}

void FakeInterfaces::Add(const std::string& name, unsigned flags, sockaddr* address,
                         sockaddr* netmask) {
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

}  // namespace testkit

extern "C" int getifaddrs(ifaddrs** list) noexcept {
    if (testkit::current == nullptr) {
        using Function = int (*)(ifaddrs**);
        return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getifaddrs"))(list);
    }
    *list = testkit::current->first();
    return 0;
}

extern "C" void freeifaddrs(ifaddrs* list) noexcept {
    if (testkit::current == nullptr) {
        using Function = void (*)(ifaddrs*);
        reinterpret_cast<Function>(dlsym(RTLD_NEXT, "freeifaddrs"))(list);
    }
}
