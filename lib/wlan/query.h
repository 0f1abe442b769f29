// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// query.h - one question to the wireless daemon and its answer.
#ifndef VELK_WLAN_QUERY_H_
#define VELK_WLAN_QUERY_H_

#include "velk/wlan.h"

namespace velk {

// Sends a message without a body and waits for the reply. Returns LIB_VELK_SUCCESS, or the result
// of sending or receiving. The semaphore is removed.
int QueryWlanDaemon(short type, UMsgData& out);

}  // namespace velk

#endif  // VELK_WLAN_QUERY_H_
