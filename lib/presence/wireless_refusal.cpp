// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_refusal.cpp - refuses commands on the wireless interface.
#include "lib/presence/wireless_refusal.h"

#include "velk/request.h"
#include "velk/wired.h"
#include "velk/wlan.h"

namespace velk {

int WirelessRefusal() {
    if (IsWlanAttached() == 0) {
        return LIB_VELK_NO_ADAPTER;
    }
    return IsWiredLinked() == 0 ? LIB_VELK_SUCCESS : LIB_VELK_WIRED_LINKED;
}

}  // namespace velk
