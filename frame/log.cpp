// log.cpp - the library's lines in the system log.
#include "frame/log.h"

#include <cstdarg>
#include <cstring>

#include <syslog.h>

namespace velk {

void Log(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(LOG_NOTICE, format, arguments);
    va_end(arguments);
}

void LogErrno(const char* format, int error) {
    char text[128];
    syslog(LOG_NOTICE, format, error, strerror_r(error, text, sizeof(text)));
}

}  // namespace velk
