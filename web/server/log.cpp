// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.cpp - lines for the system log.
#include "web/server/log.h"

#include <utility>
#include <vector>

#include <syslog.h>

namespace velkweb {
namespace {

struct LogLine {
    int priority;
    std::string text;
};

std::vector<LogLine>& LogLines() {
    static std::vector<LogLine> lines;
    return lines;
}

}  // namespace

void Log(int priority, const std::string& line) {
    LogLines().push_back({priority, line});
}

void WriteLog() {
    openlog("velk-web", LOG_PID, LOG_AUTHPRIV);
    for (const LogLine& line : std::exchange(LogLines(), {})) {
        syslog(LOG_AUTHPRIV | line.priority, "%s", line.text.c_str());
    }
}

}  // namespace velkweb
