// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.h - the library's lines in the system log.
#ifndef VELK_BASE_LOG_H_
#define VELK_BASE_LOG_H_

namespace velk {

// Writes one line to syslog(3) at priority LOG_NOTICE.
[[gnu::format(printf, 1, 2)]] void Log(const char* format, ...);

// Writes one line with a format that ends in "errno=%d:%s", the number and its text. The caller
// saves errno directly after the call that failed, before anything else can change it.
void LogErrno(const char* format, int error);

}  // namespace velk

#endif  // VELK_BASE_LOG_H_
