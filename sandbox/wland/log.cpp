// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.cpp - the log of the daemon.
#include "sandbox/wland/log.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include <syslog.h>

namespace wland {
namespace {

bool goes_to_syslog = false;
bool has_details = false;

// Replaces control characters, which a word of the command line can contain.
std::string OneLine(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char byte) { return iscntrl(byte) != 0; }, '?');
    return text;
}

}  // namespace

void LogToSyslog() {
    openlog("wland", LOG_PID, LOG_DAEMON);
    goes_to_syslog = true;
}

void LogDetails() {
    has_details = true;
}

void Log(const std::string& line) {
    const std::string text = OneLine(line);
    if (goes_to_syslog) {
        syslog(LOG_NOTICE, "%s", text.c_str());
    } else {
        (void)fprintf(stderr, "wland: %s\n", text.c_str());
    }
}

void LogDetail(const std::string& line) {
    if (has_details) {
        Log(line);
    }
}

}  // namespace wland
