// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// commands.cpp - the commands on the options that the DHCP client requests.
#include <string>

#include "lib/base/data_area.h"
#include "velk/dhcp.h"
#include "velk/ipconf.h"
#include "velk/request.h"

namespace velk {
namespace {

// An option that the client can request. With `comment_aware`, its name after a "#" does not count;
// see SetDhcpServer().
struct Option {
    char name[sizeof("domain-name-servers")];
    bool comment_aware;
};
constexpr Option kTimeServers{"ntp-servers", false};
constexpr Option kNameServers{"domain-name-servers", true};

std::string InterfaceOf(const _velk_request& request) {
    return std::string(FieldText(request.interface));
}

bool IsOn(const _velk_request& request) {
    return request.data[0] == VELK_ON;
}

int GetOption(const _velk_request& request, const Option& option, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    bool requested = false;
    const int result =
        GetDhcpServer(InterfaceOf(request), option.name, requested, option.comment_aware);
    if (result == LIB_VELK_SUCCESS) {
        out[0] = requested ? VELK_ON : VELK_OFF;
    }
    return result;
}

int SetOption(const _velk_request& request, const Option& option) {
    return SetDhcpServer(InterfaceOf(request), option.name, IsOn(request), option.comment_aware);
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetDhcp(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    switch (request.command_id) {
        case VELK_CMD_DHCP_NTP:
            return GetDhcpNtps(request, out);
        case VELK_CMD_DHCP_DNS:
            return GetDhcpDns(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}

int SetDhcp(const _velk_request& request, char* out) {
    switch (request.command_id) {
        case VELK_CMD_DHCP_NTP:
            return SetDhcpNtps(request, out);
        case VELK_CMD_DHCP_DNS:
            return SetDhcpDns(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}

int GetDhcpNtps(const _velk_request& request, char* out) {
    return GetOption(request, kTimeServers, out);
}

int GetDhcpDns(const _velk_request& request, char* out) {
    return GetOption(request, kNameServers, out);
}

int SetDhcpNtps(const _velk_request& request, char* /*out*/) {
    const int result = SetOption(request, kTimeServers);
    return result == LIB_VELK_SUCCESS ? SetNtpdate(request) : result;
}

int SetDhcpDns(const _velk_request& request, char* /*out*/) {
    const int result = SetOption(request, kNameServers);
    if (result != LIB_VELK_SUCCESS) {
        return result;
    }
    return SetDnsDhcpScript(InterfaceOf(request), IsOn(request));
}
