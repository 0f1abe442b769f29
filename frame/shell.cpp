// shell.cpp - shell lines, and putting an edited copy in place with them.
#include "frame/shell.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "frame/log.h"
#include "velk.h"

namespace velk {

int RunCommand(const char* format, ...) {
    char command[kCommandSize];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(command, sizeof(command), format, arguments);
    va_end(arguments);
    if (length < 0 || static_cast<size_t>(length) >= sizeof(command)) {
        // The line itself stays out of the log: it may carry a secret.
        Log("command line of %d bytes does not fit", length);
        return LIB_VELK_INVALID_PARAMETER;
    }
    return SystemCommand(command);
}

}  // namespace velk

int SystemCommand(const char* command) {
    if (system(command) == -1) {
        velk::LogErrno("system errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    return LIB_VELK_SUCCESS;
}

int FileCopyAndDelete(const std::string& source, const std::string& target) {
    const int copied = velk::RunCommand("cat %s > %s", source.c_str(), target.c_str());
    if (copied == LIB_VELK_INVALID_PARAMETER) {
        return copied;  // never remove an edit that could not even be tried
    }
    return velk::RunCommand("rm %s", source.c_str());
}
