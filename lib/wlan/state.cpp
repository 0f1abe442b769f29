// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// state.cpp - the facts that the wireless daemon reports of adapter and connection.
#include <array>
#include <cstring>
#include <string_view>

#include "lib/base/data_area.h"
#include "lib/base/find_row.h"
#include "lib/presence/wireless_refusal.h"
#include "lib/wlan/codes.h"
#include "lib/wlan/query.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace velk {
namespace {

struct WlanStateEntry {
    uint32_t command_id;
    int (*getter)(const SMsgState& state, char* out);
};

constexpr auto kFacts = std::to_array<WlanStateEntry>({
    {VELK_CMD_HARDWARE_VERSION, GetHardwareVersion},
    {VELK_CMD_SOFTWARE_VERSION, GetSoftwareVersion},
    {VELK_CMD_STANDARD, GetDot11Phy},
    {VELK_CMD_REGION, GetRegion},
    {VELK_CMD_RATE, GetRate},
    {VELK_CMD_ACCESS_POINT, GetAccessPoint},
    {VELK_CMD_SIGNAL, GetSignal},
});

constexpr std::array kOneBasedCodes{Code{1, 0}, Code{2, 1}, Code{3, 2}};
constexpr std::string_view kRevisionKey = "Rev= ";

// Writes a coded fact. An unknown value writes `byte_if_unknown` and fails.
int PutFact(uint16_t value, char byte_if_unknown, char* out) {
    const int result = PutCode(kOneBasedCodes, value, out);
    if (result != LIB_VELK_SUCCESS && out != nullptr) {
        out[0] = byte_if_unknown;
    }
    return result;
}

// Writes the bytes of the daemon's report unchanged.
template <typename Field>
int PutRaw(const Field& field, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    memcpy(out, &field, sizeof(field));
    return LIB_VELK_SUCCESS;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetWlanState(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (const int refusal = WirelessRefusal(); refusal != LIB_VELK_SUCCESS) {
        return refusal;
    }
    UMsgData data;
    const int received = QueryWlanDaemon(VELK_WLAN_STATE, data);
    if (received != LIB_VELK_SUCCESS) {
        return received;
    }
    const WlanStateEntry* fact = FindRow(kFacts, request.command_id, &WlanStateEntry::command_id);
    return fact == nullptr ? LIB_VELK_SUCCESS : fact->getter(data.state, out);
}

int GetHardwareVersion(const SMsgState& state, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    const std::string_view product = FieldText(state.product);
    const size_t key = product.find(kRevisionKey);
    if (key != std::string_view::npos) {
        PutText(out, product.substr(key + kRevisionKey.size()));
    }
    return LIB_VELK_SUCCESS;
}

int GetSoftwareVersion(const SMsgState& state, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    PutText(out, FieldText(state.software_version));
    return LIB_VELK_SUCCESS;
}

int GetDot11Phy(const SMsgState& state, char* out) {
    return PutFact(state.dot11_phy, 3, out);
}

int GetRegion(const SMsgState& state, char* out) {
    return PutFact(state.region, 1, out);
}

int GetRate(const SMsgState& state, char* out) {
    return PutRaw(state.rate, out);
}

int GetAccessPoint(const SMsgState& state, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    PutMac(out, state.access_point);
    return LIB_VELK_SUCCESS;
}

int GetSignal(const SMsgState& state, char* out) {
    return PutRaw(state.signal, out);
}
