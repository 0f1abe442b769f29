// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// configuration.cpp - the commands on the wireless daemon's configuration.
#include <array>

#include "lib/base/find_row.h"
#include "lib/wlan/query.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace velk {
namespace {

struct WlanConfEntry {
    uint32_t command_id;
    int (*getter)(const SMsgConf& conf, char* out);
    int (*setter)(SMsgConf& conf, const char* in);
};

constexpr auto kFields = std::to_array<WlanConfEntry>({
    {VELK_CMD_STANDARDS_ENABLED, GetDot11PhyConf, SetDot11PhyConf},
    {VELK_CMD_SERVICE_SET, GetServiceSet, SetServiceSet},
    {VELK_CMD_SSID, GetSsid, SetSsid},
    {VELK_CMD_CHANNEL, GetChannel, SetChannel},
    {VELK_CMD_ENCRYPTION, GetEncryption, SetEncryption},
    {VELK_CMD_AUTHENTICATION, GetAuth, SetAuth},
    {VELK_CMD_WEP_KEY_1, GetWepKey1, SetWepKey1},
    {VELK_CMD_WEP_KEY_2, GetWepKey2, SetWepKey2},
    {VELK_CMD_WEP_KEY_3, GetWepKey3, SetWepKey3},
    {VELK_CMD_WEP_KEY_4, GetWepKey4, SetWepKey4},
    {VELK_CMD_WEP_DEFAULT_KEY, GetWepDefault, SetWepDefault},
    {VELK_CMD_PSK, GetPsk, SetPsk},
});

// Returns null for an id that is no field of the configuration.
const WlanConfEntry* FindField(uint32_t command_id) {
    return FindRow(kFields, command_id, &WlanConfEntry::command_id);
}

}  // namespace
}  // namespace velk

using namespace velk;

int RecvWlanConf(UMsgData& out) {
    return QueryWlanDaemon(VELK_WLAN_REPORT, out);
}

int GetWlanConf(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    UMsgData data;
    if (const int received = RecvWlanConf(data); received != LIB_VELK_SUCCESS) {
        return received;
    }
    const WlanConfEntry* field = FindField(request.command_id);
    return field == nullptr ? LIB_VELK_SUCCESS : field->getter(data.conf, out);
}

int SetWlanConf(const _velk_request& request, char* /*out*/) {
    UMsgData data;
    if (const int received = RecvWlanConf(data); received != LIB_VELK_SUCCESS) {
        return received;
    }
    if (const WlanConfEntry* field = FindField(request.command_id)) {
        const int changed = field->setter(data.conf, request.data);
        if (changed != LIB_VELK_SUCCESS) {
            return changed;
        }
    }
    return SendWlanRequestMessage(VELK_WLAN_STORE, &data);
}
