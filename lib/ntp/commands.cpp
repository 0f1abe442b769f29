// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// commands.cpp - the commands on time synchronisation.
#include "velk/ntp.h"
#include "velk/request.h"

int GetNtp(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    switch (request.command_id) {
        case VELK_CMD_NTP_SERVER:
            return GetNtpIp(request, out);
        case VELK_CMD_NTP_RESULT:
            return GetNtpCommunicate(request, out);
        case VELK_CMD_NTP:
            return GetNtpMethod(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}

int SetNtp(const _velk_request& request, char* out) {
    switch (request.command_id) {
        case VELK_CMD_NTP:
            return SetNtpMethod(request, out);
        case VELK_CMD_NTP_SERVER:
            return SetNtpIp(request, out);
        default:
            return LIB_VELK_INVALID_PARAMETER;
    }
}
