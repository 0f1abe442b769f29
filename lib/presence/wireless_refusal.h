// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_refusal.h - refuses commands on the wireless interface.
#ifndef VELK_PRESENCE_WIRELESS_REFUSAL_H_
#define VELK_PRESENCE_WIRELESS_REFUSAL_H_

namespace velk {

// Returns LIB_VELK_NO_ADAPTER if no supported adapter is attached, LIB_VELK_WIRED_LINKED if the
// wired port has a link, else LIB_VELK_SUCCESS. The link is checked last because that may take a
// minute.
int WirelessRefusal();

}  // namespace velk

#endif  // VELK_PRESENCE_WIRELESS_REFUSAL_H_
