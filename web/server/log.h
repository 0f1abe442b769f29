// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.h - lines for the system log.
#ifndef WEB_SERVER_LOG_H_
#define WEB_SERVER_LOG_H_

#include <string>

namespace velkweb {

// Keeps a line for the log, with a priority of syslog(3).
void Log(int priority, const std::string& line);

// Writes the lines. Only after the answer: the call waits while the log's daemon does not read.
void WriteLog();

}  // namespace velkweb

#endif  // WEB_SERVER_LOG_H_
