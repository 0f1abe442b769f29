// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// commands.cpp - the commands on an interface's IP configuration.
#include "velk/ipconf.h"
#include "velk/request.h"

int GetInterfaces(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    switch (request.command_id) {
        case VELK_CMD_IP_METHOD:
            return GetIpSettingMethod(request, out);
        case VELK_CMD_APIPA:
            return GetApipa(request, out);
        case VELK_CMD_IP_ADDRESS:
            return GetIpAddressConf(request, out);
        case VELK_CMD_NETMASK:
            return GetSubNetMaskConf(request, out);
        case VELK_CMD_GATEWAY:
            return GetDefGatewayConf(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}

int SetInterfaces(const _velk_request& request, char* out) {
    switch (request.command_id) {
        case VELK_CMD_IP_METHOD:
            return SetIpSettingMethod(request, out);
        case VELK_CMD_APIPA:
            return SetApipa(request, out);
        case VELK_CMD_IP_ADDRESS:
            return SetIpAddressConf(request, out);
        case VELK_CMD_NETMASK:
            return SetSubNetMaskConf(request, out);
        case VELK_CMD_GATEWAY:
            return SetDefGatewayConf(request, out);
        case VELK_CMD_DHCP_NOTICE:
            return SetPrintDHCPFinished(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}
