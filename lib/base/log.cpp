// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// log.cpp - the library's lines in the system log.
//
// A host program, or a library preloaded into it, may define syslog(3) itself and must see every
// line. The checked form that _FORTIFY_SOURCE puts in its place has another name.
#undef _FORTIFY_SOURCE

#include "lib/base/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <syslog.h>

namespace velk {
namespace {

constexpr size_t kLineSize = 1024;  // a longer line is cut, as many loggers do

}  // namespace

void Log(const char* format, ...) {
    char line[kLineSize];
    va_list arguments;
    va_start(arguments, format);
    (void)vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    syslog(LOG_NOTICE, "%s", line);
}

void LogErrno(const char* format, int error) {
    char text[128];
    Log(format, error, strerror_r(error, text, sizeof(text)));
}

}  // namespace velk
