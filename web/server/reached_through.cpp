// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reached_through.cpp - the interface over which a browser reaches the device.
#include "web/server/reached_through.h"

#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"

namespace velkweb {
namespace {

constexpr in_port_t kAnyPort = 9;

// Returns the own address of packets to the other one. connect(2) sends nothing on this socket.
in_addr OwnAddressFor(in_addr other) {
    const velk::UniqueFd fd(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kAnyPort);
    address.sin_addr = other;
    socklen_t length = sizeof address;
    if (connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        getsockname(fd.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return {};
    }
    return address.sin_addr;
}

bool HasAddress(const ifaddrs& entry, in_addr own) {
    if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET) {
        return false;
    }
    sockaddr_in address{};
    memcpy(&address, entry.ifa_addr, sizeof address);
    return address.sin_addr.s_addr == own.s_addr;
}

// The name of an alias, such as "eth0:avahi", has a colon.
std::string InterfaceWith(in_addr own) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        return {};
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, freeifaddrs);
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (HasAddress(*entry, own)) {
            const std::string name = entry->ifa_name;
            return name.substr(0, name.find(':'));
        }
    }
    return {};
}

}  // namespace

std::string InterfaceTo(const std::string& address) {
    constexpr char kMapped[] = "::ffff:";
    const size_t at = address.find(kMapped);
    std::string text = at == std::string::npos ? address : address.substr(at + strlen(kMapped));
    text = text.substr(0, text.find(']'));
    in_addr other{};
    if (inet_pton(AF_INET, text.c_str(), &other) != 1) {
        return {};
    }
    const std::string name = InterfaceWith(OwnAddressFor(other));
    return name == "eth0" || name == "eth1" ? name : "";
}

std::string HostName() {
    char name[256] = "";
    (void)gethostname(name, sizeof name - 1);
    return name;
}

}  // namespace velkweb
