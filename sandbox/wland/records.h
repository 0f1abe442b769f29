// records.h - what the daemon knows of the wireless network.
#ifndef SANDBOX_WLAND_RECORDS_H_
#define SANDBOX_WLAND_RECORDS_H_

#include "velk/wlan.h"

namespace wland {

// The configuration the daemon starts with. Its keys are samples.
SMsgConf StartConfiguration();

// The state of an adapter that runs with this configuration.
SMsgState StateOf(const SMsgConf& conf);

}  // namespace wland

#endif  // SANDBOX_WLAND_RECORDS_H_
