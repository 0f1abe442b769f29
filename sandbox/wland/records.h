// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// records.h - the configuration and state that the daemon reports.
#ifndef SANDBOX_WLAND_RECORDS_H_
#define SANDBOX_WLAND_RECORDS_H_

#include <optional>
#include <string>

#include "velk/wlan.h"

namespace wland {

// Returns the configuration at the start. Its keys are samples.
SMsgConf StartConfiguration();

// Returns the state of an adapter with this configuration.
SMsgState StateOf(const SMsgConf& conf);

// The answers of a captured daemon.
struct Records {
    SMsgConf conf = StartConfiguration();
    std::optional<SMsgState> state{};  // nothing: that of the configuration
};

// Reads the bytes of an SMsgConf, and of an SMsgState if it follows. Throws sandbox::Failure.
Records ReadRecords(const std::string& file);

}  // namespace wland

#endif  // SANDBOX_WLAND_RECORDS_H_
