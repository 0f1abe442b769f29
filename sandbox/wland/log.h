// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.h - the log of the daemon. It never contains keys.
#ifndef SANDBOX_WLAND_LOG_H_
#define SANDBOX_WLAND_LOG_H_

#include <string>

namespace wland {

// Sends all later lines to syslog(3). Without it, they go to standard error.
void LogToSyslog();

// Enables LogDetail().
void LogDetails();

void Log(const std::string& line);
void LogDetail(const std::string& line);

}  // namespace wland

#endif  // SANDBOX_WLAND_LOG_H_
