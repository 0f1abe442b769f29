// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// address.cpp - hardware address, IPv4 address and mask of an interface: read by ioctl(2), set with
// ifconfig(8). Only SetNetAddress() sets one by ioctl(2). ifconfig.cpp reads the live address of a
// command.
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>

#include "lib/base/data_area.h"
#include "lib/base/log.h"
#include "lib/base/shell.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

// Returns false, after a log line, if the kernel refuses.
bool AskKernel(int socket, ifreq& ifr, int request) {
    if (ioctl(socket, static_cast<unsigned long>(request), &ifr) == -1) {
        LogErrno("ioctl errno=%d:%s", errno);
        return false;
    }
    return true;
}

// Returns the union of an ifreq as an IPv4 socket address.
sockaddr_in AddressIn(const ifreq& ifr) {
    sockaddr_in address;
    memcpy(&address, &ifr.ifr_addr, sizeof(address));
    return address;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetMacAddress(int socket, ifreq& ifr, int request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (!AskKernel(socket, ifr, request)) {
        return LIB_VELK_SUCCESS;  // a missing address is the empty text
    }
    uint8_t mac[6];
    memcpy(mac, ifr.ifr_hwaddr.sa_data, sizeof(mac));
    PutMac(out, mac);
    return LIB_VELK_SUCCESS;
}

int GetNetAddress(int socket, ifreq& ifr, int request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    out[0] = '\0';
    if (!AskKernel(socket, ifr, request)) {
        return LIB_VELK_SUCCESS;  // a missing address is the empty text
    }
    const sockaddr_in address = AddressIn(ifr);
    inet_ntop(AF_INET, &address.sin_addr, out, INET_ADDRSTRLEN);
    return LIB_VELK_SUCCESS;
}

int GetIpAddress(int socket, ifreq& ifr, int request, char* out) {
    return GetNetAddress(socket, ifr, request, out);
}

int GetSubNetMask(int socket, ifreq& ifr, int request, char* out) {
    return GetNetAddress(socket, ifr, request, out);
}

int SetNetAddress(int socket, ifreq& ifr, int request, const char* value) {
    if (value == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    sockaddr_in address = AddressIn(ifr);
    address.sin_family = AF_INET;
    (void)inet_aton(value, &address.sin_addr);  // not an address: the kernel gets the old bytes
    memcpy(&ifr.ifr_addr, &address, sizeof(address));
    return AskKernel(socket, ifr, request) ? LIB_VELK_SUCCESS : LIB_VELK_FAILURE;
}

int SetIpAddress(int /*socket*/, ifreq& ifr, int /*request*/, const char* value) {
    if (value == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const std::string name(FieldText(ifr.ifr_name));
    return CommandLine("sudo ifconfig %s %s", name.c_str(), value).Run();
}

int SetSubNetMask(int /*socket*/, ifreq& ifr, int /*request*/, const char* value) {
    if (value == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const std::string name(FieldText(ifr.ifr_name));
    return CommandLine("sudo ifconfig %s netmask %s", name.c_str(), value).Run();
}
