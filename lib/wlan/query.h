// query.h - one question to the wireless daemon and its answer.
#include "velk/wlan.h"
#ifndef VELK_WLAN_QUERY_H_
#define VELK_WLAN_QUERY_H_

namespace velk {

// Sends a message without a body and waits for the reply. Returns LIB_VELK_SUCCESS, or the result
// of sending or receiving. The semaphore is removed.
int QueryWlanDaemon(short type, UMsgData& out);

}  // namespace velk

#endif  // VELK_WLAN_QUERY_H_
