// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ioctl_table.cpp - the functions that read and change a property that the kernel holds.
#include "lib/wired/ioctl_table.h"

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include <linux/sockios.h>
#include <sys/socket.h>

#include "lib/base/data_area.h"
#include "lib/base/find_row.h"
#include "lib/base/log.h"
#include "lib/base/unique_fd.h"
#include "lib/presence/wireless_refusal.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

// The getters and setters share their names with functions that take other arguments; the rows'
// types pick the right ones.
constexpr auto kRows = std::to_array<IoctlEntry>({
    {VELK_CMD_MAC_ADDRESS, SIOCGIFHWADDR, GetMacAddress, 0, nullptr},
    {VELK_CMD_LINK_SPEED, SIOCETHTOOL, GetLinkSpeed, SIOCETHTOOL, SetLinkSpeed},
    {VELK_CMD_IP_ADDRESS, SIOCGIFADDR, GetIpAddress, SIOCSIFADDR, SetIpAddress},
    {VELK_CMD_NETMASK, SIOCGIFNETMASK, GetSubNetMask, SIOCSIFNETMASK, SetSubNetMask},
    {VELK_CMD_GATEWAY, 0, GetDefGateway, SIOCADDRT, SetDefGateway},
});

// Returns a socket for ioctls; logs a failure.
UniqueFd OpenSocket() {
    UniqueFd fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (fd.get() == -1) {
        LogErrno("socket errno=%d:%s", errno);
    }
    return fd;
}

ifreq InterfaceRequest(const _velk_request& request) {
    ifreq ifr{};
    PutFieldText(ifr.ifr_name, FieldText(request.interface));
    return ifr;
}

}  // namespace

constinit const std::span<const IoctlEntry> kIoctlTable = kRows;

}  // namespace velk

using namespace velk;

int GetIoctl(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (FieldText(request.interface) == VELK_WIRELESS_INTERFACE) {
        if (const int refusal = WirelessRefusal(); refusal != LIB_VELK_SUCCESS) {
            return refusal;
        }
    }
    const IoctlEntry* entry = FindRow(kIoctlTable, request.command_id, &IoctlEntry::command_id);
    if (entry == nullptr) {
        return LIB_VELK_SUCCESS;
    }
    const UniqueFd socket = OpenSocket();
    if (socket.get() == -1) {
        return LIB_VELK_FAILURE;
    }
    ifreq ifr = InterfaceRequest(request);
    return entry->get_handler(socket.get(), ifr, static_cast<int>(entry->get_request), out);
}

int SetIoctl(const _velk_request& request, char* /*out*/) {
    const IoctlEntry* entry = FindRow(kIoctlTable, request.command_id, &IoctlEntry::command_id);
    if (entry == nullptr || entry->set_handler == nullptr) {
        return LIB_VELK_SUCCESS;
    }
    const UniqueFd socket = OpenSocket();
    if (socket.get() == -1) {
        return LIB_VELK_FAILURE;
    }
    ifreq ifr = InterfaceRequest(request);
    // The handlers read a text up to its NUL; a data area may lack one.
    const std::string value(FieldText(request.data));
    return entry->set_handler(socket.get(), ifr, static_cast<int>(entry->set_request),
                              value.c_str());
}
