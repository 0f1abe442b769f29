// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// query.cpp - one question to the wireless daemon and its answer.
#include "lib/wlan/query.h"

#include "lib/base/log.h"
#include "lib/wlan/reply_path.h"
#include "lib/wlan/semaphore.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace velk {

// The daemon sends its reply to any socket at the reply path once the semaphore is posted. Until
// this program has bound that path nobody else may post, so another user's files are removed first.
int QueryWlanDaemon(short type, UMsgData& out) {
    if (!ClearReplyPath()) {
        return LIB_VELK_FAILURE;
    }
    const ReadySemaphore ready;
    if (!ready.is_private()) {
        return LIB_VELK_FAILURE;
    }
    if (ready.handle() == nullptr) {
        Log("SendWlanRequestMessage CreatSemaphore");
    }
    const int sent = SendWlanRequestMessage(type, nullptr);
    if (sent != LIB_VELK_SUCCESS) {
        return sent;
    }
    return RecvWlanResponseMessage(out, ready.handle());
}

}  // namespace velk
