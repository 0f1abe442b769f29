// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// network_control.cpp - configures network interfaces with netdevice(7) calls.
#include "sandbox/device/network_control.h"

#include <cerrno>
#include <cstring>

#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <net/route.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

ifreq RequestFor(const std::string& interface) {
    ifreq request{};
    strncpy(request.ifr_name, interface.c_str(), sizeof(request.ifr_name) - 1);
    return request;
}

void Change(const velk::UniqueFd& any_socket, unsigned long call, ifreq& request) {
    if (ioctl(any_socket.get(), call, &request) == -1) {
        Fail(std::string("cannot configure ") + request.ifr_name, errno);
    }
}

void SetUpFlag(const velk::UniqueFd& any_socket, const std::string& interface, bool up) {
    ifreq request = RequestFor(interface);
    Change(any_socket, SIOCGIFFLAGS, request);
    const int flags = up ? request.ifr_flags | IFF_UP : request.ifr_flags & ~IFF_UP;
    request.ifr_flags = static_cast<short>(flags);
    Change(any_socket, SIOCSIFFLAGS, request);
}

void PutAddress(const in_addr& address, sockaddr& place) {
    sockaddr_in full{};
    full.sin_family = AF_INET;
    full.sin_addr = address;
    memcpy(&place, &full, sizeof(full));
}

}  // namespace

NetworkControl::NetworkControl() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    if (socket_.get() == -1) {
        Fail("cannot make a socket", errno);
    }
}

void NetworkControl::BringUp(const std::string& interface) const {
    SetUpFlag(socket_, interface, true);
}

void NetworkControl::BringDown(const std::string& interface) const {
    SetUpFlag(socket_, interface, false);
}

bool NetworkControl::IsRunning(const std::string& interface) const {
    ifreq request = RequestFor(interface);
    Change(socket_, SIOCGIFFLAGS, request);
    return (request.ifr_flags & IFF_RUNNING) != 0;
}

void NetworkControl::SetHardwareAddress(const std::string& interface,
                                        const HardwareAddress& address) const {
    ifreq request = RequestFor(interface);
    request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
    memcpy(request.ifr_hwaddr.sa_data, address.data(), address.size());
    Change(socket_, SIOCSIFHWADDR, request);
}

void NetworkControl::SetAddress(const std::string& interface, const StaticAddress& address) const {
    ifreq request = RequestFor(interface);
    PutAddress(address.address, request.ifr_addr);
    Change(socket_, SIOCSIFADDR, request);
    PutAddress(address.mask, request.ifr_addr);
    Change(socket_, SIOCSIFNETMASK, request);
    in_addr broadcast = address.address;
    broadcast.s_addr |= ~address.mask.s_addr;
    PutAddress(broadcast, request.ifr_addr);
    Change(socket_, SIOCSIFBRDADDR, request);
}

void NetworkControl::SetGateway(const std::string& interface, const StaticAddress& address) const {
    std::string device = interface;
    rtentry route{};
    PutAddress({INADDR_ANY}, route.rt_dst);
    PutAddress({INADDR_ANY}, route.rt_genmask);
    PutAddress(address.gateway, route.rt_gateway);
    route.rt_flags = RTF_UP | RTF_GATEWAY;
    route.rt_dev = device.data();
    if (ioctl(socket_.get(), SIOCADDRT, &route) == -1 && errno != ENETUNREACH) {
        Fail("cannot set the gateway of " + interface, errno);
    }
}

void NetworkControl::SetLinkMode(const std::string& interface, const LinkMode& mode) const {
    ethtool_cmd settings{};
    settings.cmd = ETHTOOL_SSET;
    ethtool_cmd_speed_set(&settings, mode.speed);
    settings.duplex = mode.is_full_duplex ? DUPLEX_FULL : DUPLEX_HALF;
    settings.autoneg = mode.negotiates ? AUTONEG_ENABLE : AUTONEG_DISABLE;
    ifreq request = RequestFor(interface);
    request.ifr_data = reinterpret_cast<char*>(&settings);
    Change(socket_, SIOCETHTOOL, request);
}

}  // namespace sandbox
